#include "batch.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <istream>
#include <ostream>
#include <sstream>

#include "cli.h"
#include "format.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Cli {
namespace {

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

std::string Joined(std::vector<std::string> const& words) {
  std::string text;
  for (auto const& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> Lines(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// One line as run: what its document entry tells, and how it prints.
struct Ran {
  Format::BatchEntry entry;
  LineOutcome outcome;
};

// Prints the lines one after the other as each prints on its own, except
// that a result of true that was not applied prints as false.
void PrintLines(std::vector<Ran> const& lines, std::ostream& out) {
  Format::Options format_options;
  format_options.width = OutputWidth(out);
  for (auto const& [entry, outcome] : lines) {
    auto result = entry.result;
    if (!result) {
      out << entry.text;
      continue;
    }
    if (outcome.quiet_success) continue;
    if (!entry.applied && result->GetKind() == MetaObj::Kind::Bool &&
        static_cast<MetaObj::MetaBool const&>(*result).GetValue()) {
      result = MetaObj::MetaBool::New(false);
    }
    Format::Print(outcome.formatter, result, outcome.directives, format_options, out);
  }
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
  auto transactions = PluginTransactions();
  if (transactions.empty()) {
    err << "Error: --batch needs a plug-in that can hold changes back; none of the loaded "
           "plug-ins can\n";
    return kUsageError;
  }
  if (char const* failure = BeginTransactions(transactions, options.dry_run)) {
    err << "Error: " << failure << '\n';
    return kCommandError;
  }
  auto each = [&](auto step) {
    for (auto const& hooks : transactions) (hooks.*step)();
  };

  std::vector<Ran> lines;
  int status = kSuccess;
  int line_number = 0;
  BatchLine command;
  while (ReadCommand(*in, line_number, command)) {
    if (options.keep_going) each(&AutoCli::Transaction::savepoint);
    Ran& ran = lines.emplace_back();
    ran.entry.line = command.number;
    ran.entry.command = Joined(command.words);
    ran.outcome.batch_formatter = options.formatter;
    std::ostringstream line_out;
    std::ostringstream line_err;
    int line_status;
    if (!command.complete) {
      line_err << "Error: unterminated quote or trailing backslash\n";
      line_status = kUsageError;
    } else {
      line_status = RunBatchLine(command.words, root, line_out, line_err, ran.outcome);
    }
    err << line_err.str();
    ran.entry.status = line_status;
    ran.entry.result = ran.outcome.result;
    ran.entry.text = line_out.str();
    ran.entry.messages = Lines(line_err.str());
    // Applied unless it fails or the batch is not written (settled below).
    ran.entry.applied = line_status == kSuccess;
    if (line_status == kSuccess) continue;
    if (!options.keep_going) {
      status = line_status;
      break;
    }
    each(&AutoCli::Transaction::rollback);
    err << "Error: batch line " << command.number << " failed; its changes were not applied.\n";
    if (status == kSuccess) status = line_status;
  }

  bool written = false;
  if (options.dry_run || (status != kSuccess && !options.keep_going)) {
    each(&AutoCli::Transaction::abort);
    if (!options.dry_run) {
      err << "Error: batch line " << command.number
          << " failed; no change of the batch was applied.\n";
    }
  } else {
    written = true;
    for (auto const& hooks : transactions) {
      if (char const* failure = hooks.commit()) {
        err << "Error: " << failure << '\n';
        status = kCommandError;
        written = false;
      }
    }
  }
  for (auto& ran : lines) ran.entry.applied = ran.entry.applied && written;

  if (Format::IsDocumentFormatter(options.formatter)) {
    std::vector<Format::BatchEntry> entries;
    for (auto const& ran : lines) entries.push_back(ran.entry);
    Format::PrintBatch(options.formatter, entries, out);
  } else {
    PrintLines(lines, out);
  }
  return status;
}

}  // namespace Toolbase::Cli
