#include "cli.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <list>
#include <ostream>
#include <stdexcept>

#include "batch.h"
#include "build_config.h"
#include "completion.h"
#include "format.h"
#include "help.h"
#include "manual.h"
#include "options.h"
#include "params.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Cli {
namespace {

using AutoCli::NamespaceNode;

// Options that stand before the command's words.
struct GlobalOptions {
  std::string formatter;
  bool help = false;
  bool list_commands = false;
  bool dry_run = false;
  // Workflow options: a batch file, the completion script, the version, and
  // the candidates the completion script asks for (all words after it).
  std::string batch;
  bool batch_continue = false;
  std::string completion;
  bool version = false;
  bool complete = false;
  bool describe = false;
  // The folder to write the manual pages into (used by the build).
  std::string manual_folder;
  std::vector<std::string> complete_words;
  // The plug-ins' own options, in the order given.
  std::vector<std::pair<AutoCli::GlobalOption const*, std::string>> plugin_values;

  bool Workflow() const {
    return !batch.empty() || batch_continue || !completion.empty() || version || complete ||
           !manual_folder.empty();
  }
};

std::string JoinWords(std::list<std::string> const& words) {
  std::string text;
  for (auto const& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// The names of every global option, "--" included, for suggestions.
std::vector<std::string> GlobalOptionNames() {
  std::vector<std::string> names;
  for (auto const& option : kFrameworkOptions) names.push_back(std::string("--") + option.name);
  for (auto const& plugin : LoadedPlugins()) {
    for (auto const& option : plugin.options) names.push_back(std::string("--") + option.name);
  }
  return names;
}

// The name of an option argument: "--name" of "--name" or "--name=value".
std::string OptionName(std::string const& arg) { return arg.substr(0, arg.find('=')); }

// Takes the global options from the front of `args`; returns the index of the
// first argument that is not one. An unknown option there is a usage error.
size_t ParseGlobalOptions(std::vector<std::string> const& args, GlobalOptions& options) {
  size_t i = 0;
  auto value_of = [&](std::string const& name) -> std::string {
    std::string const& arg = args[i];
    if (arg.size() > name.size() && arg[name.size()] == '=') return arg.substr(name.size() + 1);
    if (i + 1 >= args.size()) throw UsageError("Option " + name + " needs a value");
    return args[++i];
  };
  for (; i < args.size(); ++i) {
    std::string const& arg = args[i];
    if (arg.empty() || arg[0] != '-') break;
    std::string const name = OptionName(arg);
    AutoCli::GlobalOption const* plugin_option =
        name.rfind("--", 0) == 0 ? FindPluginOption(name.substr(2)) : nullptr;
    if (arg == "--help" || arg == "-h") {
      options.help = true;
    } else if (arg == "--list-commands") {
      options.list_commands = true;
    } else if (arg == "--dry-run") {
      options.dry_run = true;
    } else if (name == "--formatter") {
      options.formatter = value_of(name);
    } else if (name == "--batch") {
      options.batch = value_of(name);
      if (options.batch.empty()) throw UsageError("Option --batch needs a file name or -");
    } else if (arg == "--batch-continue") {
      options.batch_continue = true;
    } else if (name == "--completion") {
      options.completion = value_of(name);
    } else if (name == "--manual-pages") {
      options.manual_folder = value_of(name);
    } else if (arg == "--version") {
      options.version = true;
    } else if (arg == "--complete") {
      options.complete = true;
      size_t first = i + 1;
      if (first < args.size() && args[first] == "--describe") {
        options.describe = true;
        ++first;
      }
      if (first < args.size() && args[first] == "--") ++first;
      options.complete_words.assign(args.begin() + static_cast<long>(first), args.end());
      return args.size();
    } else if (plugin_option) {
      options.plugin_values.emplace_back(plugin_option, value_of(name));
    } else {
      throw UsageError("Unknown option '" + name + "'." + DidYouMean(name, GlobalOptionNames()) +
                       " Run 'toolbase --help' for the options.");
    }
  }
  return i;
}

// Hands each plug-in option to its plug-in; throws UsageError with the
// plug-in's message for a value it refuses.
void ApplyPluginOptions(GlobalOptions const& options) {
  for (auto const& [option, value] : options.plugin_values) {
    if (char const* problem = option->apply(value.c_str())) throw UsageError(problem);
  }
}

// The paths of the commands under `node`, whose own path is `prefix`.
void CollectCommands(NamespaceNode& node, std::string const& prefix,
                     std::vector<std::string>& paths) {
  if (node.GetType() == AutoCli::NodeType::Command) {
    paths.push_back(prefix);
    return;
  }
  for (auto const& child : node.GetNamespaceNodes()) {
    CollectCommands(*child, prefix.empty() ? child->GetName() : prefix + ' ' + child->GetName(),
                    paths);
  }
}

// The one message for an unknown formatter, wherever the option stands.
std::string UnknownFormatter(std::string const& name) {
  std::string names;
  for (auto const& known : Format::FormatterNames()) names += (names.empty() ? "" : ", ") + known;
  return "Unknown formatter '" + name + "'." + DidYouMean(name, Format::FormatterNames()) +
         " Valid formatters: " + names;
}

// True when `args` asks for help: --help anywhere, or -h unless the command
// has a parameter of that short name.
bool AsksForHelp(std::vector<std::string> const& args, AutoCli::Command* command) {
  if (std::find(args.begin(), args.end(), "--help") != args.end()) return true;
  if (std::find(args.begin(), args.end(), "-h") == args.end()) return false;
  if (!command) return true;
  auto const spec = command->GetInputSpec();
  for (auto const& parameter : spec->GetParameters()) {
    if (parameter->GetShortName() == "h") return false;
  }
  return true;
}

int Usage(std::string const& message, std::string const& help_path, std::ostream& err) {
  err << "Error: " << message << '\n';
  if (!help_path.empty()) err << "Run 'toolbase " << help_path << " --help' for usage.\n";
  return kUsageError;
}

void PrintMessages(std::vector<std::string> const& messages, std::ostream& err) {
  for (auto const& message : messages) {
    err << message;
    if (message.empty() || message.back() != '\n') err << '\n';
  }
}

// Runs `body` inside a transaction of every plug-in that offers one, and
// drops every change afterwards. A plug-in that cannot begin fails the run.
int WithoutWriting(std::function<int()> const& body, std::ostream& err) {
  auto transactions = PluginTransactions();
  if (transactions.empty()) {
    return Usage("--dry-run needs a plug-in that can hold changes back; none of the loaded "
                 "plug-ins can", "", err);
  }
  if (char const* failure = BeginTransactions(transactions, true)) {
    err << "Error: " << failure << '\n';
    return kCommandError;
  }
  int status = body();
  for (auto const& transaction : transactions) transaction.abort();
  return status;
}

// Where a line runs: on its own (`outcome` null) or in a batch.
struct LineContext {
  LineOutcome* outcome = nullptr;
};

// The formatter a line prints with: in a batch that prints one JSON or XML
// document, the batch's (a line's own cannot break the document); else the
// line's own, the batch's, or the command's default (empty: simple).
std::string ChooseFormatter(std::string const& own, LineContext const& context) {
  if (!context.outcome) return own;
  std::string const& batch = context.outcome->batch_formatter;
  if (batch == "json" || batch == "xml") return batch;
  if (own == "json" || own == "xml") {
    throw UsageError("A batch prints one document: give --formatter " + own +
                     " before --batch, not on a line");
  }
  return own.empty() ? batch : own;
}

int RunCommand(AutoCli::Command& command, std::vector<std::string> const& args,
               GlobalOptions const& global, LineContext const& context, std::ostream& out,
               std::ostream& err) {
  std::string path = command.GetPathString(' ');
  auto spec = command.GetInputSpec();
  // Global options may also follow the words, unless the command has a
  // parameter of the same name.
  GlobalOptions options = global;
  std::vector<std::string> own;
  std::shared_ptr<CallSpec::Input> input;
  std::string formatter;
  try {
    for (size_t i = 0; i < args.size(); ++i) {
      std::string const& arg = args[i];
      std::string const name = OptionName(arg);
      std::string const bare = name.rfind("--", 0) == 0 ? name.substr(2) : "";
      auto const* plugin_option = bare.empty() ? nullptr : FindPluginOption(bare);
      bool const global_option =
          (bare == "formatter" || bare == "dry-run" || plugin_option) && !spec->FindParameter(bare);
      if (!global_option) {
        own.push_back(arg);
        continue;
      }
      if (bare == "dry-run") {
        if (arg != name) throw UsageError("Option --dry-run takes no value");
        options.dry_run = true;
        continue;
      }
      std::string value;
      if (arg.size() > name.size()) {
        value = arg.substr(name.size() + 1);
      } else if (i + 1 < args.size()) {
        value = args[++i];
      } else {
        throw UsageError("Option " + name + " needs a value");
      }
      if (plugin_option) {
        options.plugin_values.emplace_back(plugin_option, value);
      } else {
        options.formatter = value;
      }
    }
    if (!options.formatter.empty() && !Format::IsFormatter(options.formatter)) {
      throw UsageError(UnknownFormatter(options.formatter));
    }
    if (context.outcome && !options.plugin_values.empty()) {
      throw UsageError("--" + std::string(options.plugin_values.front().first->name) +
                       " cannot stand on a batch line; give it before --batch");
    }
    if (context.outcome && options.dry_run) {
      throw UsageError("--dry-run cannot stand on a batch line; give it before --batch");
    }
    formatter = ChooseFormatter(options.formatter, context);
    input = ParseParameters(*spec, own);
    ApplyPluginOptions(options);
  } catch (UsageError const& error) {
    return Usage(error.what(), path, err);
  }

  auto output = CallSpec::Output::New();
  auto execute = [&]() -> int {
    try {
      command.Execute(input, output);
    } catch (std::exception const& error) {
      // The command failed outside its own handling: its partial result is not shown.
      PrintMessages(output->GetErrorMessages(), err);
      err << "Error: " << error.what() << '\n';
      return kCommandError;
    }
    return kSuccess;
  };
  int const status = options.dry_run ? WithoutWriting(execute, err) : execute();
  if (status != kSuccess) return status;

  auto const& root = output->GetRootObject();
  if (formatter.empty()) formatter = command.GetDefaultOutputFormatter();
  bool quiet_success = formatter.empty() && root &&
                       root->GetKind() == MetaObj::Kind::Bool &&
                       static_cast<MetaObj::MetaBool const&>(*root).GetValue();
  if (formatter.empty()) formatter = "simple";
  if (context.outcome) {
    context.outcome->result = root;
    context.outcome->directives = command.GetDefaultOutputParameters();
    context.outcome->formatter = formatter;
    context.outcome->quiet_success = quiet_success;
  } else if (root && !quiet_success) {
    Format::Options format_options;
    format_options.width = OutputWidth(out);
    Format::Print(formatter, root, command.GetDefaultOutputParameters(), format_options, out);
  }
  PrintMessages(output->GetErrorMessages(), err);
  return output->HasError() ? kCommandError : kSuccess;
}

// The loaded plug-ins under the top-level help: file name and words.
void PrintPlugins(std::ostream& out) {
  out << "\nLoaded Plug-ins:\n";
  if (LoadedPlugins().empty()) out << "  (none)\n";
  for (auto const& plugin : LoadedPlugins()) {
    std::string words;
    for (auto const& word : plugin.words) words += (words.empty() ? "" : ", ") + word;
    out << "  " << std::filesystem::path(plugin.file).filename().string()
        << (words.empty() ? "" : " (" + words + ")") << '\n';
  }
}

int RunWorkflow(GlobalOptions const& options, NamespaceNode& root, std::ostream& out,
                std::ostream& err) {
  if (options.complete) {
    // Names come from the host these options name; a value refused is passed over.
    for (auto const& [option, value] : options.plugin_values) option->apply(value.c_str());
    PrintCandidates(CompletionCandidates(root, options.complete_words), options.describe, out);
    return kSuccess;
  }
  if (options.version) {
    out << "toolbase " << kVersion << '\n';
    return kSuccess;
  }
  if (!options.manual_folder.empty()) {
    try {
      WriteManualPages(root, options.manual_folder);
    } catch (std::exception const& error) {
      err << "Error: " << error.what() << '\n';
      return kCommandError;
    }
    return kSuccess;
  }
  if (!options.completion.empty()) {
    if (PrintCompletionScript(options.completion, out)) return kSuccess;
    return Usage("Unknown shell '" + options.completion + "' for --completion; valid: bash, zsh",
                 "", err);
  }
  if (options.batch.empty()) return Usage("Option --batch-continue needs --batch FILE", "", err);
  try {
    ApplyPluginOptions(options);
  } catch (UsageError const& error) {
    return Usage(error.what(), "", err);
  }
  BatchOptions batch;
  batch.file = options.batch;
  batch.formatter = options.formatter;
  batch.keep_going = options.batch_continue;
  batch.dry_run = options.dry_run;
  return RunBatch(batch, std::cin, root, out, err);
}

// An unknown word: where it stood, the closest valid word, and the valid ones.
int UnknownWord(std::string const& word, NamespaceNode& node, std::ostream& err) {
  std::string known = node.GetPathString(' ');
  std::vector<std::string> names = node.GetNamespaceNodeNames();
  std::sort(names.begin(), names.end());
  std::string valid;
  for (auto const& name : names) valid += (valid.empty() ? "" : ", ") + name;
  std::string where = known.empty() ? "at the top level" : "under '" + known + "'";
  return Usage("Unknown word '" + word + "' " + where +
                   (valid.empty() ? std::string(": it takes no further words")
                                  : "." + DidYouMean(word, names) + " Valid words: " + valid),
               known, err);
}

int RunLine(std::vector<std::string> const& args, NamespaceNode& root, std::ostream& out,
            std::ostream& err, LineContext const& context) {
  GlobalOptions options;
  size_t first_word = 0;
  try {
    first_word = ParseGlobalOptions(args, options);
  } catch (UsageError const& error) {
    return Usage(error.what(), "", err);
  }
  if (!options.formatter.empty() && !Format::IsFormatter(options.formatter)) {
    return Usage(UnknownFormatter(options.formatter), "", err);
  }

  if (options.Workflow()) {
    if (context.outcome) {
      return Usage("--batch, --batch-continue, --completion and --version cannot stand in a batch",
                   "", err);
    }
    if (!options.complete && first_word < args.size()) {
      return Usage("'" + args[first_word] +
                       "' cannot follow --batch, --batch-continue, --completion or --version",
                   "", err);
    }
    if (!options.help || !options.batch.empty()) return RunWorkflow(options, root, out, err);
  }

  std::list<std::string> words;
  size_t i = first_word;
  for (; i < args.size() && !args[i].empty() && args[i][0] != '-'; ++i) words.push_back(args[i]);
  std::vector<std::string> rest(args.begin() + static_cast<long>(i), args.end());
  // `help WORDS...` is `WORDS... --help`, unless a plug-in took the word.
  if (!words.empty() && words.front() == "help" && !root.GetNamespaceNode("help")) {
    words.pop_front();
    options.help = true;
  }

  std::list<std::string> remaining = words;
  auto node = root.ResolveNode(remaining);
  if (!remaining.empty()) return UnknownWord(remaining.front(), *node, err);

  if (options.list_commands) {
    std::vector<std::string> paths;
    CollectCommands(*node, node->GetPathString(' '), paths);
    std::sort(paths.begin(), paths.end());
    auto list = MetaObj::MetaList::New(MetaObj::MetaType::String);
    list->AddAll(std::move(paths));
    std::string formatter;
    try {
      formatter = ChooseFormatter(options.formatter, context);
    } catch (UsageError const& error) {
      return Usage(error.what(), "", err);
    }
    if (formatter.empty()) formatter = "simple";
    if (context.outcome) {
      context.outcome->result = list;
      context.outcome->formatter = formatter;
    } else {
      Format::Print(formatter, list, {}, {}, out);
    }
    return kSuccess;
  }

  auto command = node->GetDispatcher();
  bool const help = options.help || AsksForHelp(rest, command.get());
  if (!command) {
    if (help) {
      PrintNamespaceHelp(*node, out);
      if (node.get() == &root) PrintPlugins(out);
      return kSuccess;
    }
    if (!rest.empty()) {
      return Usage("'" + JoinWords(words) + "' is a namespace, not a command; it takes no "
                   "parameters such as '" + rest.front() + "'", JoinWords(words), err);
    }
    PrintNamespaceHelp(*node, err);
    return kUsageError;
  }
  if (help) {
    PrintCommandHelp(*command, out);
    return kSuccess;
  }
  return RunCommand(*command, rest, options, context, out, err);
}

}  // namespace

std::shared_ptr<NamespaceNode> NewRoot() { return AutoCli::Namespace::New(); }

int Run(std::vector<std::string> const& args, NamespaceNode& root, std::ostream& out,
        std::ostream& err) {
  return RunLine(args, root, out, err, {});
}

int RunBatchLine(std::vector<std::string> const& args, NamespaceNode& root, std::ostream& out,
                 std::ostream& err, LineOutcome& outcome) {
  return RunLine(args, root, out, err, {&outcome});
}

int OutputWidth(std::ostream const& out) {
  if (&out != &std::cout || !isatty(STDOUT_FILENO)) return 0;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  if (char const* columns = std::getenv("COLUMNS")) {
    if (int width = std::atoi(columns); width > 0) return std::max(40, width);
  }
  return 80;
}

}  // namespace Toolbase::Cli
