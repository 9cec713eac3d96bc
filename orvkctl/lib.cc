#include "hostctl/lib.h"

#include <utility>

namespace HostCtl {

const std::string emptyString;

namespace Lib {

HostCtlException::HostCtlException(char const* text) : message(text) {}
HostCtlException::HostCtlException(std::string text) : message(std::move(text)) {}
HostCtlException::~HostCtlException() = default;
char const* HostCtlException::what() const noexcept { return message.c_str(); }

HostCtlObject::~HostCtlObject() = default;

}  // namespace Lib
}  // namespace HostCtl

namespace OrvkCtl::Lib {
OrvkCtlObject::~OrvkCtlObject() = default;
}  // namespace OrvkCtl::Lib
