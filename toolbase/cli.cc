#include "cli.h"

#include <dlfcn.h>
#include <sys/stat.h>
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
  std::string host_state;
  bool host_state_given = false;
  bool help = false;
  bool list_commands = false;
  // Workflow options: a batch file, the completion script, the version, and
  // the candidates the completion script asks for (all words after it).
  std::string batch;
  bool batch_continue = false;
  std::string completion;
  bool version = false;
  bool complete = false;
  std::vector<std::string> complete_words;

  bool Workflow() const {
    return !batch.empty() || batch_continue || !completion.empty() || version || complete;
  }
};

std::vector<LoadedPlugin>& Plugins() {
  static std::vector<LoadedPlugin> plugins;
  return plugins;
}

std::string JoinWords(std::list<std::string> const& words) {
  std::string text;
  for (auto const& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// Takes the global options from the front of `args`; returns the index of the
// first argument that is not one.
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
    if (arg == "--help" || arg == "-h") {
      options.help = true;
    } else if (arg == "--list-commands") {
      options.list_commands = true;
    } else if (arg.rfind("--formatter", 0) == 0 && (arg.size() == 11 || arg[11] == '=')) {
      options.formatter = value_of("--formatter");
    } else if (arg.rfind("--host-state", 0) == 0 && (arg.size() == 12 || arg[12] == '=')) {
      options.host_state = value_of("--host-state");
      options.host_state_given = true;
    } else if (arg == "--batch" || arg.rfind("--batch=", 0) == 0) {
      options.batch = value_of("--batch");
      if (options.batch.empty()) throw UsageError("Option --batch needs a file name or -");
    } else if (arg == "--batch-continue") {
      options.batch_continue = true;
    } else if (arg == "--completion" || arg.rfind("--completion=", 0) == 0) {
      options.completion = value_of("--completion");
    } else if (arg == "--version") {
      options.version = true;
    } else if (arg == "--complete") {
      options.complete = true;
      size_t first = i + 1 < args.size() && args[i + 1] == "--" ? i + 2 : i + 1;
      options.complete_words.assign(args.begin() + static_cast<long>(first), args.end());
      return args.size();
    } else {
      break;
    }
  }
  return i;
}

// A state path must name a file (which need not exist yet): an empty one
// would silently fall back to the user's default host.
void CheckHostStatePath(std::string const& path) {
  if (path.empty()) throw UsageError("Option --host-state needs a file path, got an empty one");
  struct stat info {};
  if (stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    throw UsageError("Option --host-state needs a file path, but " + path + " is a folder");
  }
}

// The paths of the commands under `node`, whose own path is `prefix`.
void CollectCommands(NamespaceNode& node, std::string const& prefix,
                     std::vector<std::string>& paths) {
  for (auto const& child : node.GetNamespaceNodes()) {
    std::string path = prefix.empty() ? child->GetName() : prefix + ' ' + child->GetName();
    if (child->GetType() == AutoCli::NodeType::Command) {
      paths.push_back(std::move(path));
    } else {
      CollectCommands(*child, path, paths);
    }
  }
}

// The one message for an unknown formatter, wherever the option stands.
std::string UnknownFormatter(std::string const& name) {
  std::string names;
  for (auto const& known : Format::FormatterNames()) names += (names.empty() ? "" : ", ") + known;
  return "Unknown formatter '" + name + "'. Valid formatters: " + names;
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

int RunCommand(AutoCli::Command& command, std::vector<std::string> const& args,
               GlobalOptions const& global, std::ostream& out, std::ostream& err) {
  std::string path = command.GetPathString(' ');
  auto spec = command.GetInputSpec();
  // Global options may also follow the words, unless the command has a
  // parameter of the same name.
  GlobalOptions options = global;
  std::vector<std::string> own;
  std::shared_ptr<CallSpec::Input> input;
  try {
    for (size_t i = 0; i < args.size(); ++i) {
      std::string const& arg = args[i];
      std::string* target = nullptr;
      std::string name;
      for (auto [option, field] : {std::pair{"formatter", &options.formatter},
                                   std::pair{"host-state", &options.host_state}}) {
        std::string flag = std::string("--") + option;
        if ((arg == flag || arg.rfind(flag + "=", 0) == 0) && !spec->FindParameter(option)) {
          target = field;
          name = flag;
          if (field == &options.host_state) options.host_state_given = true;
        }
      }
      if (!target) {
        own.push_back(arg);
      } else if (arg.size() > name.size()) {
        *target = arg.substr(name.size() + 1);
      } else if (i + 1 < args.size()) {
        *target = args[++i];
      } else {
        throw UsageError("Option " + name + " needs a value");
      }
    }
    if (!options.formatter.empty() && !Format::IsFormatter(options.formatter)) {
      throw UsageError(UnknownFormatter(options.formatter));
    }
    if (options.host_state_given) CheckHostStatePath(options.host_state);
    input = ParseParameters(*spec, own);
  } catch (UsageError const& error) {
    return Usage(error.what(), path, err);
  }
  if (!options.host_state.empty()) setenv("TOOLBASE_HOST_STATE", options.host_state.c_str(), 1);

  auto output = CallSpec::Output::New();
  try {
    command.Execute(input, output);
  } catch (std::exception const& error) {
    // The command failed outside its own handling: its partial result is not shown.
    PrintMessages(output->GetErrorMessages(), err);
    err << "Error: " << error.what() << '\n';
    return kCommandError;
  }

  auto const& root = output->GetRootObject();
  std::string formatter = options.formatter;
  if (formatter.empty()) formatter = command.GetDefaultOutputFormatter();
  bool quiet_success = formatter.empty() && root &&
                       root->GetKind() == MetaObj::Kind::Bool &&
                       static_cast<MetaObj::MetaBool const&>(*root).GetValue();
  if (formatter.empty()) formatter = "simple";
  if (root && !quiet_success) {
    Format::Options format_options;
    if (char const* columns = std::getenv("COLUMNS")) {
      format_options.width = std::max(40, std::atoi(columns));
    }
    Format::Print(formatter, root, command.GetDefaultOutputParameters(), format_options, out);
  }
  PrintMessages(output->GetErrorMessages(), err);
  return output->HasError() ? kCommandError : kSuccess;
}

}  // namespace

std::shared_ptr<NamespaceNode> NewRoot() { return AutoCli::Namespace::New(); }

void LoadPlugins(std::string const& directory, NamespaceNode& root) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (auto const& entry : std::filesystem::directory_iterator(directory, error)) {
    if (entry.path().extension() == ".so") files.push_back(entry.path());
  }
  if (error) {
    throw std::runtime_error("cannot read plug-in folder " + directory + ": " + error.message());
  }
  std::sort(files.begin(), files.end());
  for (auto const& file : files) {
    void* handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!handle) throw std::runtime_error("cannot load plug-in " + file.string() + ": " + dlerror());
    auto entry = reinterpret_cast<AutoCliRegisterNamespacesFn>(
        dlsym(handle, "AutoCli_RegisterNamespaces"));
    if (!entry) {
      throw std::runtime_error("plug-in " + file.string() + " has no AutoCli_RegisterNamespaces");
    }
    auto before = root.GetNamespaceNodeNames();
    void* word = &root;
    entry(&word);
    LoadedPlugin loaded{file.string(), handle, {}};
    for (auto const& name : root.GetNamespaceNodeNames()) {
      if (std::find(before.begin(), before.end(), name) == before.end()) {
        loaded.words.push_back(name);
      }
    }
    auto& plugins = Plugins();
    auto same = std::find_if(plugins.begin(), plugins.end(),
                             [&](LoadedPlugin const& other) { return other.file == loaded.file; });
    if (same != plugins.end()) {
      *same = std::move(loaded);
    } else {
      plugins.push_back(std::move(loaded));
    }
  }
}

std::vector<LoadedPlugin> const& LoadedPlugins() { return Plugins(); }

std::string DefaultPluginDirectory() {
  if (char const* dir = std::getenv("TOOLBASE_PLUGIN_DIR"); dir && *dir) return dir;
  std::error_code error;
  auto exe = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return "plugins";
  // In the build tree the plug-ins stand beside the executable; installed,
  // in the library folder.
  auto beside = exe.parent_path() / "plugins";
  if (std::filesystem::is_directory(beside, error)) return beside.string();
  return (exe.parent_path() / kInstalledPluginDir).lexically_normal().string();
}

namespace {

// The loaded plug-ins under the top-level help: file name and words.
void PrintPlugins(std::ostream& out) {
  out << "\nLoaded Plug-ins:\n";
  if (Plugins().empty()) out << "  (none)\n";
  for (auto const& plugin : Plugins()) {
    std::string words;
    for (auto const& word : plugin.words) words += (words.empty() ? "" : ", ") + word;
    out << "  " << std::filesystem::path(plugin.file).filename().string()
        << (words.empty() ? "" : " (" + words + ")") << '\n';
  }
}

int RunWorkflow(GlobalOptions const& options, NamespaceNode& root, std::ostream& out,
                std::ostream& err) {
  if (options.complete) {
    // Names on the host come from the state file the line being typed names.
    auto const& words = options.complete_words;
    for (size_t i = 0; i + 1 < words.size(); ++i) {
      std::string state;
      if (words[i] == "--host-state" && i + 2 < words.size()) state = words[i + 1];
      if (words[i].rfind("--host-state=", 0) == 0) state = words[i].substr(13);
      if (!state.empty()) setenv("TOOLBASE_HOST_STATE", state.c_str(), 1);
    }
    for (auto const& candidate : CompletionCandidates(root, options.complete_words)) {
      out << candidate << '\n';
    }
    return kSuccess;
  }
  if (options.version) {
    out << "toolbase " << kVersion << '\n';
    return kSuccess;
  }
  if (!options.completion.empty()) {
    if (PrintCompletionScript(options.completion, out)) return kSuccess;
    return Usage("Unknown shell '" + options.completion + "' for --completion; valid: bash, zsh",
                 "", err);
  }
  if (options.batch.empty()) return Usage("Option --batch-continue needs --batch FILE", "", err);
  if (!options.host_state.empty()) setenv("TOOLBASE_HOST_STATE", options.host_state.c_str(), 1);
  BatchOptions batch;
  batch.file = options.batch;
  batch.formatter = options.formatter;
  batch.keep_going = options.batch_continue;
  return RunBatch(batch, std::cin, root, out, err);
}

int RunLine(std::vector<std::string> const& args, NamespaceNode& root, std::ostream& out,
            std::ostream& err, bool in_batch) {
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
    if (in_batch) {
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

  if (options.list_commands) {
    std::vector<std::string> paths;
    CollectCommands(root, root.GetPathString(' '), paths);
    std::sort(paths.begin(), paths.end());
    auto list = MetaObj::MetaList::New(MetaObj::MetaType::String);
    list->AddAll(std::move(paths));
    Format::Print(options.formatter.empty() ? "simple" : options.formatter, list, {}, {}, out);
    return kSuccess;
  }

  std::list<std::string> remaining = words;
  auto node = root.ResolveNode(remaining);
  if (!remaining.empty()) {
    std::string known = node->GetPathString(' ');
    std::vector<std::string> names = node->GetNamespaceNodeNames();
    std::sort(names.begin(), names.end());
    std::string valid;
    for (auto const& name : names) valid += (valid.empty() ? "" : ", ") + name;
    std::string where = known.empty() ? "at the top level" : "under '" + known + "'";
    return Usage("Unknown word '" + remaining.front() + "' " + where +
                     (valid.empty() ? std::string(": it takes no further words")
                                    : ". Valid words: " + valid),
                 known, err);
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
  return RunCommand(*command, rest, options, out, err);
}

}  // namespace

int Run(std::vector<std::string> const& args, NamespaceNode& root, std::ostream& out,
        std::ostream& err) {
  return RunLine(args, root, out, err, false);
}

int RunBatchLine(std::vector<std::string> const& args, NamespaceNode& root, std::ostream& out,
                 std::ostream& err) {
  return RunLine(args, root, out, err, true);
}

}  // namespace Toolbase::Cli
