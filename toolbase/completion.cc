#include "completion.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <ostream>
#include <sstream>
#include <string_view>

#include "format.h"
#include "options.h"
#include "plugins.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Cli {
namespace {

using AutoCli::NamespaceNode;

bool Contains(std::vector<Candidate> const& list, std::string const& word) {
  return std::any_of(list.begin(), list.end(),
                     [&word](Candidate const& candidate) { return candidate.word == word; });
}

// The first line of `text`: descriptions are shown one a line.
std::string FirstLine(std::string_view text) {
  return std::string(text.substr(0, std::min(text.find('\n'), text.size())));
}

std::vector<Candidate> Plain(std::vector<std::string> const& words) {
  std::vector<Candidate> candidates;
  for (auto const& word : words) candidates.push_back({word, ""});
  return candidates;
}

// Every global option: the framework's, then the plug-ins'.
std::vector<Candidate> GlobalOptionCandidates() {
  std::vector<Candidate> options;
  for (auto const& option : kFrameworkOptions) {
    options.push_back({std::string("--") + option.name, option.description});
  }
  for (auto const& plugin : LoadedPlugins()) {
    for (auto const& option : plugin.options) {
      options.push_back({std::string("--") + option.name, option.description});
    }
  }
  return options;
}

// True when the global option `word` ("--name") takes a value.
bool TakesValue(std::string const& word) {
  if (word.rfind("--", 0) != 0) return false;
  if (auto const* option = FindFrameworkOption(word.substr(2))) return option->value_name;
  return FindPluginOption(word.substr(2)) != nullptr;
}

// The values of global option `word`; empty (file names) for a plug-in's.
std::vector<Candidate> GlobalValueCandidates(std::string const& word) {
  if (word == "--formatter") return Plain(Format::FormatterNames());
  if (word == "--completion") return Plain({"bash", "zsh"});
  return {};
}

// Runs the source's list command and collects the named field of its records,
// only reading the host. A missing command, a failing host or an unexpected
// shape gives no names.
std::vector<std::string> HostNames(NamespaceNode& root, AutoCli::CompletionSource const& source) {
  std::vector<std::string> names;
  std::list<std::string> words;
  std::istringstream command_words(source.command);
  for (std::string word; command_words >> word;) words.push_back(word);
  auto node = root.ResolveNode(words);
  auto command = words.empty() ? node->GetDispatcher() : nullptr;
  if (!command) return names;
  for (auto const& plugin : LoadedPlugins()) {
    if (plugin.has_transaction && plugin.transaction.read_only) plugin.transaction.read_only();
  }
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

std::vector<Candidate> ValueCandidates(NamespaceNode& root, AutoCli::Command& command,
                                       CallSpec::ParameterSpec const& parameter) {
  std::vector<Candidate> values;
  if (parameter.GetType() == CallSpec::Bool) return Plain({"false", "true"});
  if (auto const& constraint = parameter.GetConstraint()) {
    if (constraint->GetType() == CallSpec::StringEnum) {
      for (auto const& [value, description] : constraint->GetStringEnums()) {
        values.push_back({value, FirstLine(description)});
      }
    } else if (constraint->GetType() == CallSpec::IntEnum) {
      for (long value : constraint->GetIntEnums()) values.push_back({std::to_string(value), ""});
    }
  }
  if (!values.empty()) return values;
  auto path = command.GetPath();
  if (path.empty()) return values;
  if (auto const* source = FindCompletionSource(path.front(), parameter.GetName())) {
    return Plain(HostNames(root, *source));
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

// Candidates for `typed` after `given`, the words after the command's path.
std::vector<Candidate> CommandCandidates(NamespaceNode& root, AutoCli::Command& command,
                                         std::vector<std::string> const& given,
                                         std::string const& typed) {
  auto spec = command.GetInputSpec();
  // `--name=value`: the values, behind the name.
  if (auto eq = typed.find('='); typed.rfind("--", 0) == 0 && eq != std::string::npos) {
    std::string const name = typed.substr(0, eq);
    std::vector<Candidate> values;
    if (auto parameter = NamedParameter(*spec, name)) {
      values = ValueCandidates(root, command, *parameter);
    } else if (TakesValue(name)) {
      values = GlobalValueCandidates(name);
    }
    for (auto& value : values) value.word = name + "=" + value.word;
    return values;
  }
  // Walk the parameters given so far to see whether a value is due.
  std::shared_ptr<CallSpec::ParameterSpec> pending;
  std::string global_due;
  std::vector<std::string> used;
  for (auto const& word : given) {
    if (pending || !global_due.empty()) {
      pending.reset();
      global_due.clear();
      continue;
    }
    if (auto parameter = NamedParameter(*spec, word)) {
      used.push_back(parameter->GetName());
      if (parameter->GetType() != CallSpec::Flag) pending = parameter;
    } else if (TakesValue(word)) {
      global_due = word;
    }
  }
  if (pending) return ValueCandidates(root, command, *pending);
  if (!global_due.empty()) return GlobalValueCandidates(global_due);
  std::vector<Candidate> names;
  for (auto const& parameter : spec->GetParameters()) {
    if (parameter->GetType() == CallSpec::StringList ||
        std::find(used.begin(), used.end(), parameter->GetName()) == used.end()) {
      names.push_back({"--" + parameter->GetName(), FirstLine(parameter->GetDescription())});
    }
  }
  for (auto const& option : GlobalOptionCandidates()) {
    if ((option.word == "--formatter" || option.word == "--dry-run" ||
         FindPluginOption(option.word.substr(2))) &&
        !spec->FindParameter(option.word.substr(2))) {
      names.push_back(option);
    }
  }
  names.push_back({"--help", "Show the command's parameters."});
  return names;
}

// Hands the plug-in options among `words` to their plug-ins, so that names
// come from the host the line names. A value a plug-in refuses is passed over.
void ApplyOptionsOf(std::vector<std::string> const& words) {
  for (size_t i = 0; i < words.size(); ++i) {
    std::string const& word = words[i];
    if (word.rfind("--", 0) != 0) continue;
    auto const eq = word.find('=');
    auto const* option = FindPluginOption(word.substr(2, eq == std::string::npos ? eq : eq - 2));
    if (!option) continue;
    if (eq != std::string::npos) {
      option->apply(word.substr(eq + 1).c_str());
    } else if (i + 1 < words.size()) {
      option->apply(words[++i].c_str());
    }
  }
}

std::vector<Candidate> Candidates(NamespaceNode& root, std::vector<std::string> const& prior,
                                  std::string const& typed) {
  ApplyOptionsOf(prior);
  size_t i = 0;
  while (i < prior.size() && prior[i].rfind("-", 0) == 0) {
    if (TakesValue(prior[i])) {
      if (i + 1 == prior.size()) return GlobalValueCandidates(prior[i]);
      ++i;
    }
    ++i;
  }
  std::shared_ptr<NamespaceNode> node = root.GetThis();
  for (; i < prior.size(); ++i) {
    if (node->GetDispatcher()) break;
    if (prior[i] == "help" && node.get() == &root && !root.GetNamespaceNode("help")) continue;
    node = node->GetNamespaceNode(prior[i]);
    if (!node) return {};
  }
  if (auto command = node->GetDispatcher()) {
    return CommandCandidates(
        root, *command, std::vector<std::string>(prior.begin() + static_cast<long>(i), prior.end()),
        typed);
  }
  if (typed.rfind("-", 0) == 0) {
    if (node.get() != &root) return {{"--help", "Show the namespace's commands."}};
    if (auto eq = typed.find('='); eq != std::string::npos) {
      std::string const name = typed.substr(0, eq);
      auto values = GlobalValueCandidates(name);
      for (auto& value : values) value.word = name + "=" + value.word;
      return values;
    }
    return GlobalOptionCandidates();
  }
  std::vector<Candidate> words;
  for (auto const& child : node->GetNamespaceNodes()) {
    words.push_back({child->GetName(), FirstLine(child->GetDescription())});
  }
  if (node.get() == &root && !root.GetNamespaceNode("help") && prior.size() == i) {
    words.push_back({"help", "Show help for the words that follow."});
  }
  return words;
}

// The script's function asks `toolbase --complete -- WORDS...` (the words up
// to and with the one under the cursor) for one candidate a line. Bash splits
// words at ':' and '=' as well as at blanks: the function glues such pieces
// back together when nothing stood between them on the line, and hands bash
// only the part of each candidate that replaces its last piece. Names with
// blanks are quoted unless the typed word already opened a quote. With no
// candidate it falls back to file names (a state file, --batch, file values).
const char kBashScript[] = R"SH(# bash completion for toolbase; generated by `toolbase --completion bash`.
_toolbase() {
  local cur=${COMP_WORDS[COMP_CWORD]} line=${COMP_LINE-} quote='' candidate piece
  local -a words=()
  local i at=0 rest trimmed
  [[ -n $line ]] && at=${#COMP_WORDS[0]}
  for ((i = 1; i <= COMP_CWORD; i++)); do
    piece=${COMP_WORDS[i]}
    if [[ -n $line ]]; then
      rest=${line:at}
      trimmed=${rest#"${rest%%[![:space:]]*}"}
      at=$((at + ${#rest} - ${#trimmed} + ${#piece}))
      if ((i > 1 && ${#rest} == ${#trimmed})) &&
         [[ $piece == [:=]* || ${words[${#words[@]}-1]} == *[:=] ]]; then
        words[${#words[@]}-1]+=$piece
        continue
      fi
    fi
    words+=("$piece")
  done
  local typed=${words[${#words[@]}-1]}
  case $typed in \"*|\'*) quote=${typed:0:1} ;; esac
  words[${#words[@]}-1]=${typed#$quote}
  local keep=$((${#typed} - ${#cur}))
  ((keep < 0)) && keep=0
  local -a candidates
  mapfile -t candidates < <("${COMP_WORDS[0]}" --complete -- "${words[@]}" 2>/dev/null)
  COMPREPLY=()
  for candidate in "${candidates[@]}"; do
    if [[ -n $quote ]]; then
      candidate=$quote$candidate$quote
    elif [[ $candidate == *[[:space:]]* ]]; then
      candidate=$(printf '%q' "$candidate")
    fi
    COMPREPLY+=("${candidate:keep}")
  done
  if [[ ${#COMPREPLY[@]} -eq 0 ]]; then
    compopt -o default 2>/dev/null
  fi
}
complete -F _toolbase toolbase
)SH";

// zsh keeps `--name=value` and values with ':' as one word. The candidates
// come as "word:description" lines (':' in a word escaped), for _describe.
const char kZshScript[] = R"SH(#compdef toolbase
# zsh completion for toolbase; generated by `toolbase --completion zsh`.
_toolbase() {
  local -a candidates
  candidates=("${(@f)$("${words[1]}" --complete --describe -- "${(@)words[2,CURRENT]}" 2>/dev/null)}")
  if (( ${#candidates[@]} )) && [[ -n ${candidates[1]} ]]; then
    _describe -t values 'toolbase' candidates
  else
    _files
  fi
}
compdef _toolbase toolbase
)SH";

}  // namespace

void PrintCandidates(std::vector<Candidate> const& candidates, bool describe, std::ostream& out) {
  for (auto const& candidate : candidates) {
    if (!describe) {
      out << candidate.word << '\n';
      continue;
    }
    for (char c : candidate.word) {
      if (c == ':' || c == '\\') out << '\\';
      out << c;
    }
    if (!candidate.description.empty()) out << ':' << candidate.description;
    out << '\n';
  }
}

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

std::vector<Candidate> CompletionCandidates(NamespaceNode& root,
                                            std::vector<std::string> const& words) {
  if (words.empty()) return {};
  std::string const& typed = words.back();
  std::vector<Candidate> all =
      Candidates(root, std::vector<std::string>(words.begin(), words.end() - 1), typed);
  std::vector<Candidate> fitting;
  for (auto const& candidate : all) {
    if (candidate.word.rfind(typed, 0) == 0 && !Contains(fitting, candidate.word)) {
      fitting.push_back(candidate);
    }
  }
  std::sort(fitting.begin(), fitting.end(),
            [](Candidate const& a, Candidate const& b) { return a.word < b.word; });
  return fitting;
}

}  // namespace Toolbase::Cli
