#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace korvel::native {

/// The running applications of one bundle identifier in this login session, as they were when this object was made
/// (NSRunningApplication). Each is known by its place in the list and stays the same process, whatever becomes of its
/// number.
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
