// Base types of the host control library: its one failure type and the bases
// of its service objects.
#pragma once

#include <exception>
#include <memory>
#include <string>

namespace HostCtl {

// A shared empty string, passed where an operation asks for a string that has
// nothing to say.
extern const std::string emptyString;

namespace Lib {

// The one failure of the host control library. `message` is the text for the
// user, shown as it stands.
class HostCtlException : public std::exception {
 public:
  explicit HostCtlException(char const* text);
  explicit HostCtlException(std::string text);
  ~HostCtlException() override;
  char const* what() const noexcept override;

  std::string message;
  std::shared_ptr<void> detail;
};

// Virtual base of the library's interface classes.
class HostCtlObject {
 public:
  virtual ~HostCtlObject();
};

}  // namespace Lib
}  // namespace HostCtl

namespace OrvkCtl::Lib {

// Base of the service classes. An object caches what it read from the host:
// its cached accessors call EnsureFresh(), which runs Refresh() once while the
// object is stale. Making an object reads nothing.
class OrvkCtlObject : public virtual HostCtl::Lib::HostCtlObject {
 public:
  ~OrvkCtlObject() override;
  // Reads the object's state from the host. Throws HostCtlException.
  virtual void Refresh() = 0;
  bool IsStale() const { return stale_; }
  void MarkStale() { stale_ = true; }

 protected:
  void EnsureFresh() {
    if (stale_) {
      Refresh();
      stale_ = false;
    }
  }

 private:
  bool stale_ = true;
};

}  // namespace OrvkCtl::Lib
