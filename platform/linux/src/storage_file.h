#pragma once

#include <mutex>
#include <string>

#include <winrt/base.h>

namespace runtime {

/// The implementation of a storage file: where it is, as long as nobody else moves it. Any thread.
class storage_file : public winrt::impl::object {
  public:
    explicit storage_file(std::string path) : current(std::move(path)) {}

    std::string path() const;

    /// Takes the place of what is at the other path.
    void move_to(std::string target);

  private:
    mutable std::mutex lock;
    std::string current;
};

}  // namespace runtime
