#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace korvel::native {

/// A snapshot of the running applications with one bundle identifier in this login session (NSRunningApplication). An
/// index always refers to the same process, even if its process identifier is reused.
class RunningApplications {
public:
    explicit RunningApplications(const std::string &bundleIdentifier);
    ~RunningApplications();

    std::size_t count() const;
    long long processIdentifier(std::size_t at) const;
    bool isTerminated(std::size_t at) const;
    void terminate(std::size_t at);
    void forceTerminate(std::size_t at);

private:
    struct Native;
    const std::unique_ptr<Native> native;
};

} // namespace korvel::native
