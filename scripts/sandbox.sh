#!/bin/bash
# Runs a command in a throw-away network and mount namespace, for trying and
# testing the linux host without touching this machine's own network:
#   scripts/sandbox.sh build/toolbase --host linux network nic list
#   scripts/sandbox.sh bash            (an interactive shell inside)
# Inside: a private tmpfs on /run (so /run/netns and the backend's own state
# are the sandbox's), TOOLBASE_LINUX_ROOT a folder in it for resolver and
# hosts files, TOOLBASE_HOST=linux, and two veth pairs whose outer ends,
# ornic0 and ornic1, stand for NICs (their peers live in a namespace "wire").
# Needs root (or sudo) and unshare from util-linux.
set -euo pipefail
if [ "${TOOLBASE_SANDBOX:-}" != inside ]; then
  [ $# -gt 0 ] || set -- bash
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  # The namespace this starts from, which the inside must not be.
  from=$(stat -L -c %i /proc/self/ns/net)
  exec $sudo env TOOLBASE_SANDBOX=inside TOOLBASE_SANDBOX_FROM="$from" unshare --net --mount --propagation private --fork \
    bash "$0" "$@"
fi
# Refuse to go on unless this is a network namespace of its own.
if [ -z "${TOOLBASE_SANDBOX_FROM:-}" ] ||
   [ "$(stat -L -c %i /proc/self/ns/net)" = "$TOOLBASE_SANDBOX_FROM" ]; then
  echo "sandbox.sh: not in a network namespace of its own; refusing to go on" >&2
  exit 1
fi
# -n: no record in /run/mount, which is still the machine's until the mount.
mount -n -t tmpfs -o mode=0755 sandbox-run /run
mkdir -p /run/netns
root=/run/sandbox-root
mkdir -p "$root/etc"
printf 'nameserver 192.0.2.53\n' > "$root/etc/resolv.conf"
printf '127.0.0.1\tlocalhost\n' > "$root/etc/hosts"
export TOOLBASE_LINUX_ROOT=$root TOOLBASE_HOST=linux
ip link set lo up
ip netns add wire
for i in 0 1; do
  ip link add "ornic$i" address "02:00:00:00:10:0$i" type veth peer name "wire$i"
  ip link set "wire$i" netns wire
  ip -n wire link set "wire$i" up
  ip link set "ornic$i" up
done
"$@"
