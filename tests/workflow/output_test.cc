// Where output goes decides how it looks and whether the run succeeded:
// tables wrap only on a terminal, at its width; output that cannot be
// written fails the run.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <sstream>

#include "support/harness.h"
#include "workflow/temp_dir_test.h"

namespace {

class OutputTest : public TempDirTest {
 protected:
  // Runs `command` (a shell line; $TOOLBASE is the executable) in bash;
  // returns the exit status and fills `text` with what it printed.
  int Shell(std::string const& command, std::string& text) {
    std::string line = "TOOLBASE_HOST_STATE=" + dir_ + "/state.json TOOLBASE=" +
                       TOOLBASE_EXECUTABLE + " bash -c '" + command + "' 2>&1";
    FILE* pipe = popen(line.c_str(), "r");
    text.clear();
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) text.append(buffer, n);
    int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  static size_t LongestLine(std::string const& text) {
    size_t longest = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) longest = std::max(longest, line.size());
    return longest;
  }

};

// This table's last column is long and marked to wrap.
constexpr char const* kWrappingTable = "$TOOLBASE network nic queue loadbalancer plugin list";

TEST_F(OutputTest, TablesWrapOnlyOnATerminalAtItsWidth) {
  std::string piped;
  ASSERT_EQ(Shell(std::string("COLUMNS=50 ") + kWrappingTable + " | cat", piped), 0) << piped;
  std::string wide;
  ASSERT_EQ(Shell(std::string(kWrappingTable) + " > " + dir_ + "/file; cat " + dir_ + "/file",
                  wide),
            0);
  EXPECT_EQ(piped, wide) << "COLUMNS does not matter off a terminal";
  ASSERT_GT(LongestLine(piped), 70u) << piped;

  // On a terminal of 70 columns (COLUMNS says otherwise: the terminal wins).
  std::string on_terminal;
  ASSERT_EQ(Shell(std::string("script -qec \"stty cols 70; COLUMNS=200 ") + kWrappingTable +
                      "\" /dev/null",
                  on_terminal),
            0)
      << on_terminal;
  std::erase(on_terminal, '\r');
  EXPECT_LE(LongestLine(on_terminal), 70u) << on_terminal;
  EXPECT_GT(std::count(on_terminal.begin(), on_terminal.end(), '\n'),
            std::count(piped.begin(), piped.end(), '\n'));
}

TEST_F(OutputTest, WritingToAFullDeviceFails) {
  for (char const* command :
       {"$TOOLBASE network nic list > /dev/full", "$TOOLBASE --help > /dev/full",
        "$TOOLBASE --formatter json network firewall get > /dev/full"}) {
    SCOPED_TRACE(command);
    std::string text;
    EXPECT_EQ(Shell(command, text), 1);
    EXPECT_NE(text.find("Error: cannot write the output: No space left on device"),
              std::string::npos)
        << text;
  }
}

}  // namespace
