#include "completion.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <ostream>
#include <sstream>
#include <string_view>

#include "format.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Cli {
namespace {

using AutoCli::NamespaceNode;

// Options before the words; those in the first list take a value.
// (Plain arrays of literals: nothing to build when the library loads.)
constexpr char const* kValueOptions[] = {"--formatter", "--host-state", "--batch", "--completion"};
constexpr char const* kFlagOptions[] = {"--batch-continue", "--help", "--list-commands",
                                        "--version"};

// Where the names on the host come from: a list command of the tree and the
// field of its records that holds the name a parameter takes.
struct NameSource {
  char const* parameter;
  char const* command;  // words separated by blanks
  char const* field;
};

constexpr NameSource kNameSources[] = {
    {"nic-name", "network nic list", "Name"},
    {"vswitch-name", "network vswitch standard list", "Name"},
    {"portgroup-name", "network vswitch standard portgroup list", "Name"},
    {"interface-name", "network ip interface list", "Name"},
    {"netstack", "network ip netstack list", "Key"},
};

bool Contains(std::vector<std::string> const& list, std::string const& word) {
  return std::find(list.begin(), list.end(), word) != list.end();
}

template <size_t N>
bool Contains(char const* const (&list)[N], std::string const& word) {
  return std::find(std::begin(list), std::end(list), std::string_view(word)) != std::end(list);
}

// Runs the source's list command and collects the named field of its records.
// A missing command, a failing host or an unexpected shape gives no names.
std::vector<std::string> HostNames(NamespaceNode& root, NameSource const& source) {
  std::vector<std::string> names;
  std::list<std::string> words;
  std::istringstream command_words(source.command);
  for (std::string word; command_words >> word;) words.push_back(word);
  auto node = root.ResolveNode(words);
  auto command = words.empty() ? node->GetDispatcher() : nullptr;
  if (!command) return names;
  try {
    auto output = CallSpec::Output::New();
    command->Execute(CallSpec::Input::New(), output);
    auto const& result = output->GetRootObject();
    if (!result || result->GetKind() != MetaObj::Kind::List) return names;
    for (auto const& item : static_cast<MetaObj::MetaList const&>(*result).GetItems()) {
      if (!item || item->GetKind() != MetaObj::Kind::Struct) continue;
      auto field = static_cast<MetaObj::MetaStruct const&>(*item).GetField(source.field);
      if (field && field->GetKind() == MetaObj::Kind::String) {
        names.push_back(static_cast<MetaObj::MetaString const&>(*field).GetValue());
      }
    }
  } catch (std::exception const&) {
    names.clear();
  }
  return names;
}

std::vector<std::string> ValueCandidates(NamespaceNode& root,
                                         CallSpec::ParameterSpec const& parameter) {
  std::vector<std::string> values;
  if (parameter.GetType() == CallSpec::Bool) return {"false", "true"};
  if (auto const& constraint = parameter.GetConstraint()) {
    if (constraint->GetType() == CallSpec::StringEnum) {
      for (auto const& entry : constraint->GetStringEnums()) values.push_back(entry.first);
    } else if (constraint->GetType() == CallSpec::IntEnum) {
      for (long value : constraint->GetIntEnums()) values.push_back(std::to_string(value));
    }
  }
  if (!values.empty()) return values;
  for (auto const& source : kNameSources) {
    if (parameter.GetName() == source.parameter) return HostNames(root, source);
  }
  return values;
}

// The parameter a word names (`--long`, `-s`), or null.
std::shared_ptr<CallSpec::ParameterSpec> NamedParameter(CallSpec::InputSpec const& spec,
                                                        std::string const& word) {
  if (word.rfind("--", 0) == 0) return spec.FindParameter(word.substr(2));
  if (word.size() == 2 && word[0] == '-') {
    for (auto const& parameter : spec.GetParameters()) {
      if (parameter->GetShortName() == word.substr(1)) return parameter;
    }
  }
  return nullptr;
}

std::vector<std::string> CommandCandidates(NamespaceNode& root, AutoCli::Command& command,
                                           std::vector<std::string> const& given) {
  auto spec = command.GetInputSpec();
  // Walk the parameters given so far to see whether a value is due.
  std::shared_ptr<CallSpec::ParameterSpec> pending;
  bool formatter_due = false;
  std::vector<std::string> used;
  for (auto const& word : given) {
    if (pending || formatter_due) {
      pending.reset();
      formatter_due = false;
      continue;
    }
    if (auto parameter = NamedParameter(*spec, word)) {
      used.push_back(parameter->GetName());
      if (parameter->GetType() != CallSpec::Flag) pending = parameter;
    } else if (word == "--formatter") {
      formatter_due = true;
    }
  }
  if (pending) return ValueCandidates(root, *pending);
  if (formatter_due) return Format::FormatterNames();
  std::vector<std::string> names;
  for (auto const& parameter : spec->GetParameters()) {
    if (parameter->GetType() == CallSpec::StringList || !Contains(used, parameter->GetName())) {
      names.push_back("--" + parameter->GetName());
    }
  }
  if (!spec->FindParameter("formatter")) names.push_back("--formatter");
  names.push_back("--help");
  return names;
}

std::vector<std::string> Candidates(NamespaceNode& root, std::vector<std::string> const& prior,
                                    std::string const& typed) {
  size_t i = 0;
  while (i < prior.size() && prior[i].rfind("-", 0) == 0) {
    if (Contains(kValueOptions, prior[i])) {
      if (i + 1 == prior.size()) {
        if (prior[i] == "--formatter") return Format::FormatterNames();
        if (prior[i] == "--completion") return {"bash", "zsh"};
        return {};
      }
      ++i;
    }
    ++i;
  }
  std::shared_ptr<NamespaceNode> node = root.GetThis();
  for (; i < prior.size(); ++i) {
    if (node->GetDispatcher()) break;
    node = node->GetNamespaceNode(prior[i]);
    if (!node) return {};
  }
  if (auto command = node->GetDispatcher()) {
    return CommandCandidates(root, *command,
                             std::vector<std::string>(prior.begin() + static_cast<long>(i),
                                                      prior.end()));
  }
  if (typed.rfind("-", 0) == 0) {
    if (node.get() != &root) return {"--help"};
    std::vector<std::string> options(std::begin(kValueOptions), std::end(kValueOptions));
    options.insert(options.end(), std::begin(kFlagOptions), std::end(kFlagOptions));
    return options;
  }
  return node->GetNamespaceNodeNames();
}

// The script's function asks `toolbase --complete -- WORDS...` (the words up
// to and with the one under the cursor) for one candidate a line. Names with
// blanks are quoted unless the typed word already opened a quote. With no
// candidate it falls back to file names (--host-state, --batch, file values).
const char kBashScript[] = R"SH(# bash completion for toolbase; generated by `toolbase --completion bash`.
_toolbase() {
  local cur=${COMP_WORDS[COMP_CWORD]} quote='' candidate
  case $cur in \"*|\'*) quote=${cur:0:1} ;; esac
  local -a words=("${COMP_WORDS[@]:1:COMP_CWORD}")
  words[${#words[@]}-1]=${cur#$quote}
  local -a candidates
  mapfile -t candidates < <("${COMP_WORDS[0]}" --complete -- "${words[@]}" 2>/dev/null)
  COMPREPLY=()
  for candidate in "${candidates[@]}"; do
    if [[ -n $quote ]]; then
      COMPREPLY+=("$quote$candidate$quote")
    elif [[ $candidate == *[[:space:]]* ]]; then
      COMPREPLY+=("$(printf '%q' "$candidate")")
    else
      COMPREPLY+=("$candidate")
    fi
  done
  if [[ ${#COMPREPLY[@]} -eq 0 ]]; then
    compopt -o default 2>/dev/null
  fi
}
complete -F _toolbase toolbase
)SH";

const char kZshScript[] = R"SH(#compdef toolbase
# zsh completion for toolbase; generated by `toolbase --completion zsh`.
_toolbase() {
  local -a candidates
  candidates=("${(@f)$("${words[1]}" --complete -- "${(@)words[2,CURRENT]}" 2>/dev/null)}")
  if (( ${#candidates[@]} )) && [[ -n ${candidates[1]} ]]; then
    compadd -Q -- "${(@q)candidates}"
  else
    _files
  fi
}
compdef _toolbase toolbase
)SH";

}  // namespace

bool PrintCompletionScript(std::string const& shell, std::ostream& out) {
  if (shell == "bash") {
    out << kBashScript;
  } else if (shell == "zsh") {
    out << kZshScript;
  } else {
    return false;
  }
  return true;
}

std::vector<std::string> CompletionCandidates(NamespaceNode& root,
                                              std::vector<std::string> const& words) {
  if (words.empty()) return {};
  std::string const& typed = words.back();
  std::vector<std::string> all =
      Candidates(root, std::vector<std::string>(words.begin(), words.end() - 1), typed);
  std::vector<std::string> fitting;
  for (auto const& candidate : all) {
    if (candidate.rfind(typed, 0) == 0 && !Contains(fitting, candidate)) {
      fitting.push_back(candidate);
    }
  }
  std::sort(fitting.begin(), fitting.end());
  return fitting;
}

}  // namespace Toolbase::Cli
