#include "platform/mac/native_instances_mac.h"

#include "platform/mac/native_text_mac.h"

#import <AppKit/AppKit.h>

namespace korvel::native {

struct RunningApplications::Native {
    NSArray<NSRunningApplication *> *applications;
};

RunningApplications::RunningApplications(const std::string &bundleIdentifier)
    : native(std::make_unique<Native>(
          Native{[NSRunningApplication runningApplicationsWithBundleIdentifier:systemText(bundleIdentifier)]})) {}

RunningApplications::~RunningApplications() = default;

std::size_t RunningApplications::count() const { return native->applications.count; }

long long RunningApplications::processIdentifier(std::size_t at) const {
    return [native->applications objectAtIndex:at].processIdentifier;
}

bool RunningApplications::isTerminated(std::size_t at) const {
    return [native->applications objectAtIndex:at].terminated;
}

void RunningApplications::terminate(std::size_t at) { [[native->applications objectAtIndex:at] terminate]; }

void RunningApplications::forceTerminate(std::size_t at) { [[native->applications objectAtIndex:at] forceTerminate]; }

} // namespace korvel::native
