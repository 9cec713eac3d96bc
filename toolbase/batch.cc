#include "batch.h"

#include <signal.h>

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

// One command of the batch: its words and the line it starts on, or why it
// cannot run (a quote never closed).
struct BatchLine {
  int number = 0;
  std::vector<std::string> words;
  std::string problem;
};

// Follows a command's text line by line, looking at each character once, to
// tell whether it ends inside quotes or after a backslash that joins the
// next line; only a complete text is split into words (once).
class QuoteScanner {
 public:
  // Scans what was appended to `text` since the last call, `line` being the
  // number of the line appended. True when the text is complete.
  bool Complete(std::string const& text, int line) {
    while (at_ < text.size()) {
      char const c = text[at_];
      if (mode_ == Mode::Comment) {
        if (c == '\n') mode_ = Mode::Plain;
        ++at_;
      } else if (mode_ == Mode::Single) {
        if (c == '\'') mode_ = Mode::Plain;
        ++at_;
      } else if (mode_ == Mode::Double) {
        if (c == '"') mode_ = Mode::Plain;
        if (c == '\\' && at_ + 1 < text.size()) ++at_;
        ++at_;
      } else if (c == '\\') {
        if (at_ + 1 >= text.size()) {
          open_ = '\\';
          opened_on_ = line;
          return false;
        }
        in_word_ = text[at_ + 1] != '\n' || in_word_;
        at_ += 2;
      } else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
        in_word_ = false;
        ++at_;
      } else {
        if (c == '#' && !in_word_) mode_ = Mode::Comment;
        if (c == '\'' || c == '"') {
          mode_ = c == '"' ? Mode::Double : Mode::Single;
          open_ = c;
          opened_on_ = line;
        }
        in_word_ = mode_ != Mode::Comment;
        ++at_;
      }
    }
    return mode_ == Mode::Plain || mode_ == Mode::Comment;
  }

  // Why an incomplete text cannot run, for the user.
  std::string Problem() const {
    if (open_ == '\\' && mode_ == Mode::Plain) {
      return "the backslash at the end of line " + std::to_string(opened_on_) +
             " continues the command past the end of the batch";
    }
    return std::string("the quote (") + open_ + ") opened on line " +
           std::to_string(opened_on_) + " is never closed";
  }

 private:
  enum class Mode { Plain, Single, Double, Comment };
  Mode mode_ = Mode::Plain;
  bool in_word_ = false;
  size_t at_ = 0;
  char open_ = 0;
  int opened_on_ = 0;
};

// Reads the next command from `in`, joining lines that end inside quotes or
// after a backslash. False at the end of input with nothing left.
bool ReadCommand(std::istream& in, int& line_number, BatchLine& command) {
  std::string text;
  std::string line;
  QuoteScanner scanner;
  command = BatchLine{};
  while (std::getline(in, line)) {
    ++line_number;
    if (text.empty()) command.number = line_number;
    text += line;
    if (scanner.Complete(text, line_number)) {
      SplitWords(text, command.words);
      if (command.words.empty()) {
        text.clear();
        scanner = QuoteScanner{};
        continue;
      }
      return true;
    }
    text += '\n';
  }
  if (text.empty()) return false;
  command.problem = scanner.Problem();
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

// The signals that end a batch before its end: the user's interrupt, a
// request to stop, a terminal or pipe that went away. Each only sets a flag:
// the batch finishes the line it runs, then drops every change of the batch
// through the plug-ins' transactions.
constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

volatile sig_atomic_t stop_signal = 0;

extern "C" void NoteStopSignal(int signal) {
  if (stop_signal == 0) stop_signal = signal;
}

char const* SignalName(int signal) {
  switch (signal) {
    case SIGINT: return "SIGINT";
    case SIGTERM: return "SIGTERM";
    case SIGHUP: return "SIGHUP";
    case SIGPIPE: return "SIGPIPE";
    default: return "a signal";
  }
}

// Watches for the stop signals while it lives, and gives their dispositions
// back at its end. A signal ignored when the process started (nohup, a
// background job) stays ignored.
class StopWatch {
 public:
  StopWatch() {
    stop_signal = 0;
    struct sigaction note {};
    note.sa_handler = NoteStopSignal;
    sigemptyset(&note.sa_mask);
    note.sa_flags = SA_RESTART;
    for (size_t i = 0; i < std::size(kStopSignals); ++i) {
      sigaction(kStopSignals[i], nullptr, &before_[i]);
      if (before_[i].sa_handler != SIG_IGN) sigaction(kStopSignals[i], &note, nullptr);
    }
  }
  ~StopWatch() {
    for (size_t i = 0; i < std::size(kStopSignals); ++i) {
      sigaction(kStopSignals[i], &before_[i], nullptr);
    }
  }
  StopWatch(StopWatch const&) = delete;
  StopWatch& operator=(StopWatch const&) = delete;

  // The first stop signal that came, or 0.
  int Caught() const { return stop_signal; }

 private:
  struct sigaction before_[std::size(kStopSignals)];
};

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
  // The whole batch is read before any lock is taken: a batch on a standard
  // input that stays idle must not keep other commands waiting.
  std::vector<BatchLine> commands;
  int line_number = 0;
  for (BatchLine command; ReadCommand(*in, line_number, command);) {
    commands.push_back(std::move(command));
  }
  if (in->bad()) {
    err << "Error: cannot read batch " << (options.file == "-" ? "from standard input" : "file " + options.file)
        << ": " << std::strerror(errno) << '\n';
    return kUsageError;
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
  // From here on a stop signal undoes the batch (before, nothing was done:
  // it ends the process as usual, also while it waits for a lock).
  StopWatch stops;

  std::vector<Ran> lines;
  int status = kSuccess;
  int failed_line = 0;
  for (auto const& command : commands) {
    if (stops.Caught()) break;
    if (options.keep_going) each(&AutoCli::Transaction::savepoint);
    Ran& ran = lines.emplace_back();
    ran.entry.line = command.number;
    ran.entry.command = Joined(command.words);
    ran.outcome.batch_formatter = options.formatter;
    std::ostringstream line_out;
    std::ostringstream line_err;
    int line_status;
    if (!command.problem.empty()) {
      line_err << "Error: " << command.problem << '\n';
      line_status = kUsageError;
    } else {
      line_status = RunBatchLine(command.words, root, line_out, line_err, ran.outcome);
    }
    err << line_err.str();
    if (!ran.outcome.shown_line.empty()) ran.entry.command = ran.outcome.shown_line;
    ran.entry.status = line_status;
    ran.entry.result = ran.outcome.result;
    ran.entry.text = line_out.str();
    ran.entry.messages = Lines(line_err.str());
    // Applied unless it fails or the batch is not written (settled below).
    ran.entry.applied = line_status == kSuccess;
    if (stops.Caught()) break;
    if (line_status == kSuccess) continue;
    if (!options.keep_going) {
      status = line_status;
      failed_line = command.number;
      break;
    }
    each(&AutoCli::Transaction::rollback);
    err << "Error: batch line " << command.number << " failed; its changes were not applied.\n";
    if (status == kSuccess) status = line_status;
  }

  bool written = false;
  // The last moment to stop: a signal that comes later changes nothing of
  // the outcome; the process prints what it did and ends as it would have.
  if (int const signal = stops.Caught(); signal != 0) {
    each(&AutoCli::Transaction::abort);
    err << "Error: interrupted by " << SignalName(signal)
        << (lines.empty() ? " before the first line"
                          : " after batch line " + std::to_string(lines.back().entry.line))
        << "; no change of the batch was applied.\n";
    status = kSignalBase + signal;
  } else if (options.dry_run || (status != kSuccess && !options.keep_going)) {
    each(&AutoCli::Transaction::abort);
    if (!options.dry_run) {
      err << "Error: batch line " << failed_line
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
