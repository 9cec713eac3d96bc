// The plug-in's only regular expression, in a library of its own that the
// plug-in opens on first use: Boost.Regex (and the ICU it links) is then
// loaded only by the commands that split an uplink list.
#include <boost/regex.hpp>
#include <string>
#include <vector>

extern "C" __attribute__((visibility("default"))) void NetworkRegex_SplitUplinks(
    std::string const* text, std::vector<std::string>* tokens) {
  static const boost::regex separator(",");
  boost::sregex_token_iterator it(text->begin(), text->end(), separator, -1);
  for (boost::sregex_token_iterator end; it != end; ++it) tokens->push_back(*it);
}
