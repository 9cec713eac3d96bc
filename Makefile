# Convenience wrapper around CMake; everything builds into build/.
.PHONY: all test bench clean
all:
	@bash -c 'source scripts/deps.sh && ensure_deps && build_into build -DCMAKE_BUILD_TYPE=RelWithDebInfo'
test:
	bash scripts/test.sh
bench: all
	build/toolbase_bench
	bash bench/process_time.sh
clean:
	rm -rf build build-asan
