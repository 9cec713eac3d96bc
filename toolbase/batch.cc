#include "batch.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <istream>
#include <ostream>
#include <sstream>

#include "cli.h"

namespace Toolbase::Cli {
namespace {

// The host library's transaction entries (hostctl/transaction.h), found
// through the plug-ins that link it. The framework does not link it itself.
struct Transaction {
  using Step = void (*)();
  using Checked = char const* (*)();
  Checked begin = nullptr;
  Step savepoint = nullptr;
  Step rollback = nullptr;
  Checked commit = nullptr;
  Step abort = nullptr;

  bool Complete() const { return begin && savepoint && rollback && commit && abort; }
};

// The entries of every loaded plug-in that has all five, each library once
// (plug-ins that link the same library resolve to the same functions).
std::vector<Transaction> FindTransactions() {
  std::vector<Transaction> found;
  for (auto const& plugin : LoadedPlugins()) {
    Transaction hooks;
    hooks.begin = reinterpret_cast<Transaction::Checked>(
        dlsym(plugin.handle, "OrvkCtl_BeginTransaction"));
    hooks.savepoint = reinterpret_cast<Transaction::Step>(dlsym(plugin.handle, "OrvkCtl_Savepoint"));
    hooks.rollback =
        reinterpret_cast<Transaction::Step>(dlsym(plugin.handle, "OrvkCtl_RollbackToSavepoint"));
    hooks.commit = reinterpret_cast<Transaction::Checked>(
        dlsym(plugin.handle, "OrvkCtl_CommitTransaction"));
    hooks.abort = reinterpret_cast<Transaction::Step>(dlsym(plugin.handle, "OrvkCtl_AbortTransaction"));
    if (!hooks.Complete()) continue;
    bool known = false;
    for (auto const& other : found) known = known || other.begin == hooks.begin;
    if (!known) found.push_back(hooks);
  }
  return found;
}

// One command of the batch: its words and the line it starts on.
struct BatchLine {
  int number = 0;
  std::vector<std::string> words;
  bool complete = true;
};

// Reads the next command from `in`, joining lines that end inside quotes or
// after a backslash. False at the end of input with nothing left.
bool ReadCommand(std::istream& in, int& line_number, BatchLine& command) {
  std::string text;
  std::string line;
  command = BatchLine{};
  while (std::getline(in, line)) {
    ++line_number;
    if (text.empty()) command.number = line_number;
    text += line;
    command.words.clear();
    if (SplitWords(text, command.words)) {
      if (command.words.empty()) {
        text.clear();
        continue;
      }
      return true;
    }
    text += '\n';
  }
  if (text.empty()) return false;
  command.complete = false;
  return true;
}

bool NamesHostState(std::vector<std::string> const& words) {
  for (auto const& word : words) {
    if (word == "--host-state" || word.rfind("--host-state=", 0) == 0) return true;
  }
  return false;
}

// Indents every line of `text` by two blanks and drops its final newline.
std::string AsArrayElement(std::string const& text) {
  if (text.empty()) return "  null";
  std::string element = "  ";
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') {
      if (i + 1 == text.size()) break;
      element += "\n  ";
    } else {
      element += text[i];
    }
  }
  return element;
}

}  // namespace

bool SplitWords(std::string const& text, std::vector<std::string>& words) {
  std::string word;
  bool in_word = false;
  size_t i = 0;
  auto finish = [&] {
    if (in_word) words.push_back(word);
    word.clear();
    in_word = false;
  };
  while (i < text.size()) {
    char c = text[i];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      finish();
      ++i;
    } else if (c == '#' && !in_word) {
      while (i < text.size() && text[i] != '\n') ++i;
    } else if (c == '\\') {
      if (i + 1 >= text.size()) return false;
      if (text[i + 1] != '\n') {
        word += text[i + 1];
        in_word = true;
      }
      i += 2;
    } else if (c == '\'') {
      size_t end = text.find('\'', i + 1);
      if (end == std::string::npos) return false;
      word.append(text, i + 1, end - i - 1);
      in_word = true;
      i = end + 1;
    } else if (c == '"') {
      in_word = true;
      for (++i;; ++i) {
        if (i >= text.size()) return false;
        if (text[i] == '"') break;
        if (text[i] == '\\' && i + 1 < text.size() &&
            std::strchr("$`\"\\\n", text[i + 1]) != nullptr) {
          if (text[i + 1] != '\n') word += text[i + 1];
          ++i;
        } else {
          word += text[i];
        }
      }
      ++i;
    } else {
      word += c;
      in_word = true;
      ++i;
    }
  }
  finish();
  return true;
}

int RunBatch(BatchOptions const& options, std::istream& standard_input,
             AutoCli::NamespaceNode& root, std::ostream& out, std::ostream& err) {
  std::ifstream file;
  std::istream* in = &standard_input;
  if (options.file != "-") {
    file.open(options.file);
    if (!file) {
      err << "Error: cannot read batch file " << options.file << ": " << std::strerror(errno)
          << '\n';
      return kUsageError;
    }
    in = &file;
  }
  auto transactions = FindTransactions();
  if (transactions.empty()) {
    err << "Error: --batch needs a plug-in whose host library can hold changes back; none of "
           "the loaded plug-ins can\n";
    return kUsageError;
  }
  for (size_t i = 0; i < transactions.size(); ++i) {
    if (char const* failure = transactions[i].begin()) {
      for (size_t j = 0; j < i; ++j) transactions[j].abort();
      err << "Error: " << failure << '\n';
      return kCommandError;
    }
  }
  auto each = [&](auto step) {
    for (auto const& hooks : transactions) (hooks.*step)();
  };

  bool json = options.formatter == "json";
  std::vector<std::string> elements;
  int status = kSuccess;
  int line_number = 0;
  BatchLine command;
  while (ReadCommand(*in, line_number, command)) {
    if (options.keep_going) each(&Transaction::savepoint);
    std::ostringstream line_out;
    int line_status;
    if (!command.complete) {
      err << "Error: unterminated quote or trailing backslash\n";
      line_status = kUsageError;
    } else if (NamesHostState(command.words)) {
      // The host is loaded once for the whole batch, from one file.
      err << "Error: --host-state cannot stand on a batch line; give it before --batch\n";
      line_status = kUsageError;
    } else {
      std::vector<std::string> args;
      if (!options.formatter.empty()) args = {"--formatter", options.formatter};
      args.insert(args.end(), command.words.begin(), command.words.end());
      line_status = RunBatchLine(args, root, json ? line_out : out, err);
    }
    if (json) elements.push_back(AsArrayElement(line_out.str()));
    if (line_status == kSuccess) continue;
    if (!options.keep_going) {
      status = line_status;
      break;
    }
    each(&Transaction::rollback);
    err << "Error: batch line " << command.number << " failed; its changes were not applied.\n";
    if (status == kSuccess) status = line_status;
  }

  if (json) {
    out << '[';
    for (size_t i = 0; i < elements.size(); ++i) out << (i ? ",\n" : "\n") << elements[i];
    out << (elements.empty() ? "]\n" : "\n]\n");
  }
  if (status != kSuccess && !options.keep_going) {
    each(&Transaction::abort);
    err << "Error: batch line " << command.number
        << " failed; no change of the batch was applied.\n";
    return status;
  }
  for (auto const& hooks : transactions) {
    if (char const* failure = hooks.commit()) {
      err << "Error: " << failure << '\n';
      return kCommandError;
    }
  }
  return status;
}

}  // namespace Toolbase::Cli
