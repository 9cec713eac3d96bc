#include "manual.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "build_config.h"
#include "options.h"
#include "params.h"
#include "plugins.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"

namespace Toolbase::Cli {
namespace {

using AutoCli::NamespaceNode;

// `text` as roff: backslashes escaped, hyphens as minus signs where they
// stand for options (`minus`), and a line that would start a request made
// plain. Each line of `text` stays a line.
std::string Roff(std::string_view text, bool minus = false) {
  std::string out;
  bool line_start = true;
  for (char c : text) {
    if (line_start && (c == '.' || c == '\'')) out += "\\&";
    line_start = c == '\n';
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-' && minus) {
      out += "\\-";
    } else {
      out += c;
    }
  }
  return out;
}

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

void Header(std::ostream& out, std::string const& name, std::string const& summary) {
  out << ".TH " << Upper(name) << " 1 \"\" \"toolbase " << kVersion << "\" \"User Commands\"\n"
      << ".SH NAME\n"
      << Roff(name, true) << " \\- " << Roff(summary) << '\n';
}

void Option(std::ostream& out, char const* name, char const* value_name, char const* text) {
  out << ".TP\n\\fB\\-\\-" << Roff(name, true) << "\\fR";
  if (value_name) out << "=\\fI" << Roff(value_name) << "\\fR";
  out << '\n' << Roff(text) << '\n';
}

// The first sentence of a description, for a NAME line.
std::string Summary(std::string_view description) {
  std::string text(description.substr(0, description.find_first_of(".\n")));
  return text.empty() ? "commands" : text;
}

void WriteToolbasePage(NamespaceNode& root, std::ostream& out) {
  Header(out, "toolbase", "run the commands of the host's plug-ins");
  out << ".SH SYNOPSIS\n"
         ".B toolbase\n[\\fIOPTIONS\\fR] \\fIWORDS\\fR... [\\fIPARAMETERS\\fR]\n.br\n"
         ".B toolbase\n[\\fIOPTIONS\\fR] \\fB\\-\\-batch\\fR \\fIFILE\\fR "
         "[\\fB\\-\\-batch\\-continue\\fR]\n.br\n"
         ".B toolbase help\n[\\fIWORDS\\fR...]\n.br\n"
         ".B toolbase \\-\\-list\\-commands\n[\\fIWORDS\\fR...]\n"
         ".SH DESCRIPTION\n"
         "Each plug-in hangs a tree of words on toolbase; the words pick a command, the\n"
         "parameters after them (\\fB\\-\\-long\\fR \\fIvalue\\fR, \\fB\\-\\-long\\fR="
         "\\fIvalue\\fR, \\fB\\-s\\fR \\fIvalue\\fR) give its input.\n"
         "Truth values take true/false, yes/no or 1/0; flags take no value; list "
         "parameters repeat.\n"
         "Results go to standard output, messages to standard error.\n"
         "\\fB\\-\\-help\\fR after any words, or \\fBhelp\\fR before them, shows what "
         "they hold.\n"
         ".SH OPTIONS\n"
         "Options stand before the words; \\fB\\-\\-formatter\\fR, \\fB\\-\\-dry\\-run\\fR "
         "and the plug-ins' options may also follow them.\n";
  for (auto const& option : kFrameworkOptions) {
    Option(out, option.name, option.value_name, option.description);
  }
  for (auto const& plugin : LoadedPlugins()) {
    for (auto const& option : plugin.options) {
      Option(out, option.name, option.value_name, option.description);
    }
  }
  out << ".SH BATCHES\n"
         "\\fB\\-\\-batch\\fR \\fIFILE\\fR (\\fB\\-\\fR: standard input) runs one command a "
         "line in one process.\n"
         "Lines are split as a shell splits words (quotes, backslashes, a trailing backslash "
         "joins the next line) without expanding anything; blank lines and \\fB#\\fR "
         "comments are skipped.\n"
         ".PP\n"
         "All or nothing: the changes of every line are written at once when all succeed; "
         "the first failing line stops the batch and nothing is written.\n"
         "With \\fB\\-\\-batch\\-continue\\fR every line runs and the changes of each line "
         "that succeeds are kept.\n"
         "With \\fB\\-\\-dry\\-run\\fR every line runs and prints, and nothing is written.\n"
         ".PP\n"
         "Results are printed when the batch is over.\n"
         "With \\fB\\-\\-formatter json\\fR the batch prints one array with an object a line: "
         "\\fBline\\fR, \\fBcommand\\fR, \\fBstatus\\fR, \\fBapplied\\fR, \\fBresult\\fR and "
         "\\fBmessages\\fR; with \\fB\\-\\-formatter xml\\fR one \\fB<batch>\\fR document with "
         "a \\fB<line>\\fR element a line.\n"
         "Other formatters print each line as it prints on its own, except that a result of "
         "true whose change was not applied prints as false.\n"
         "A line's own \\fB\\-\\-formatter\\fR cannot change a JSON or XML document; the "
         "plug-ins' options and \\fB\\-\\-dry\\-run\\fR belong before \\fB\\-\\-batch\\fR.\n"
         ".SH EXIT STATUS\n"
         ".TP\n0\nSuccess.\n"
         ".TP\n1\nThe command reported an error, or its output could not be written "
         "(a full disk).\n"
         ".TP\n2\nThe line could not be used: an unknown word, option or parameter, a missing "
         "or malformed value.\n"
         ".PP\nA batch exits with the status of its first failing line.\n"
         ".SH ENVIRONMENT\n"
         ".TP\n.B TOOLBASE_PLUGIN_PATH\n"
         "Folders to load plug-ins from, separated by colons, before the ones under "
         "\\fBFILES\\fR.\n"
         ".TP\n.B COLUMNS\n"
         "The width of a terminal whose size cannot be asked; output that is not a terminal "
         "never wraps.\n"
         ".SH FILES\n"
         ".TP\n.I <folder of the executable>/plugins\n"
         "Plug-ins beside the executable (a build tree).\n"
         ".TP\n.I <folder of the executable>/" << Roff(kInstalledPluginDir, true) << "\n"
         "The installed plug-ins.\n"
         ".PP\n"
         "Every \\fI*.so\\fR of each folder is loaded, in name order; a file name already "
         "loaded from an earlier folder is passed over, and a plug-in that cannot be loaded "
         "is skipped with a warning.\n"
         ".SH EXAMPLES\n"
         ".EX\n"
         "toolbase \\-\\-list\\-commands\n"
         "toolbase help \\fIWORDS\\fR...\n"
         "toolbase \\-\\-formatter json \\fIWORDS\\fR... \\fIPARAMETERS\\fR\n"
         "toolbase \\-\\-dry\\-run \\fIWORDS\\fR... \\fIPARAMETERS\\fR\n"
         "toolbase \\-\\-formatter json \\-\\-batch changes.txt\n"
         "printf \\(aq%s\\en\\(aq \\(aq\\fIWORDS\\fR...\\(aq | toolbase \\-\\-batch \\-\n"
         "source <(toolbase \\-\\-completion bash)\n"
         ".EE\n"
         ".SH SEE ALSO\n";
  auto words = root.GetNamespaceNodeNames();
  std::sort(words.begin(), words.end());
  for (size_t i = 0; i < words.size(); ++i) {
    out << ".BR toolbase\\-" << Roff(words[i], true) << " (1)" << (i + 1 < words.size() ? "," : "")
        << '\n';
  }
}

void CollectCommands(NamespaceNode& node, std::vector<AutoCli::Command*>& commands) {
  if (auto command = node.GetDispatcher()) {
    commands.push_back(command.get());
    return;
  }
  for (auto const& child : node.GetNamespaceNodes()) CollectCommands(*child, commands);
}

void WriteWordPage(NamespaceNode& top, std::ostream& out) {
  std::string const word = top.GetName();
  Header(out, "toolbase-" + word, Summary(top.GetDescription()));
  out << ".SH SYNOPSIS\n.B toolbase\n[\\fIOPTIONS\\fR] \\fB" << Roff(word, true)
      << "\\fR \\fIWORDS\\fR... [\\fIPARAMETERS\\fR]\n"
      << ".SH DESCRIPTION\n" << Roff(top.GetDescription()) << '\n'
      << ".PP\nThe options that stand before the words are in \\fBtoolbase\\fR(1).\n"
      << ".SH COMMANDS\n";
  std::vector<AutoCli::Command*> commands;
  CollectCommands(top, commands);
  std::sort(commands.begin(), commands.end(), [](auto* a, auto* b) {
    return a->GetPathString(' ') < b->GetPathString(' ');
  });
  for (auto* command : commands) {
    out << ".SS \"toolbase " << Roff(command->GetPathString(' '), true) << "\"\n"
        << Roff(command->GetDescription()) << '\n';
    auto spec = command->GetInputSpec();
    for (auto const& parameter : spec->GetParameters()) {
      out << ".TP\n";
      if (!parameter->GetShortName().empty()) {
        out << "\\fB\\-" << Roff(parameter->GetShortName(), true) << "\\fR, ";
      }
      out << "\\fB\\-\\-" << Roff(parameter->GetName(), true) << "\\fR";
      if (char const* value = ValueWord(*parameter)) {
        out << "=\\fI" << value << "\\fR";
      }
      if (parameter->GetType() == CallSpec::StringList) out << " (repeatable)";
      if (parameter->IsRequired()) out << " (required)";
      std::string text = ExpandDescription(*parameter);
      // Lines of a value list stay lines.
      std::string lines;
      std::istringstream in(text);
      for (std::string line; std::getline(in, line);) {
        if (line.find_first_not_of(" \t") == std::string::npos) continue;
        lines += (lines.empty() ? "" : "\n.br\n") + Roff(line);
      }
      out << '\n' << lines << '\n';
    }
  }
}

void WriteFile(std::string const& path, std::string const& text) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace

std::vector<std::string> WriteManualPages(NamespaceNode& root, std::string const& folder) {
  std::vector<std::string> files;
  std::ostringstream page;
  WriteToolbasePage(root, page);
  files.push_back(folder + "/toolbase.1");
  WriteFile(files.back(), page.str());
  for (auto const& top : root.GetNamespaceNodes()) {
    std::ostringstream word_page;
    WriteWordPage(*top, word_page);
    files.push_back(folder + "/toolbase-" + top->GetName() + ".1");
    WriteFile(files.back(), word_page.str());
  }
  return files;
}

}  // namespace Toolbase::Cli
