#include "mac/native_fake.h"

#include "platform/mac/native_application_mac.h"
#include "platform/mac/native_instances_mac.h"
#include "platform/mac/native_menu_mac.h"
#include "platform/mac/native_session_mac.h"
#include "platform/mac/native_status_bar_mac.h"
#include "platform/mac/native_windows_mac.h"

namespace korvel::native {

namespace {
void note(const std::string &call) { fake().calls.push_back(call); }
void noteAt(const std::string &call, std::size_t at) { note(call + ' ' + std::to_string(at)); }
} // namespace

Fake &fake() {
    static Fake instance;
    return instance;
}

struct TemplatePicture::Native {
    std::string name;
};
TemplatePicture::TemplatePicture(const std::string &png, const std::string &doublePng, double points,
                                 const std::string &description)
    : native(std::make_shared<Native>(Native{description + ' ' + std::to_string(fake().pictures.size() / 2)})) {
    fake().pictures.insert(fake().pictures.end(), {png, doublePng});
    noteAt("picture of " + description + " at", static_cast<std::size_t>(points));
}

struct StatusBarItem::Native {};
StatusBarItem::StatusBarItem() : native(std::make_unique<Native>()) { note("item"); }
StatusBarItem::~StatusBarItem() { note("item gone"); }
void StatusBarItem::setMenu(void *nsMenu) { fake().menu = nsMenu; }
void StatusBarItem::updateMenu() { note("update menu"); }
std::size_t StatusBarItem::menuLength() const { return fake().menuLength; }
void StatusBarItem::setMenuToolTip(std::size_t at, const std::string &text) { noteAt("tip of entry " + text, at); }
void StatusBarItem::setPicture(const TemplatePicture &picture) { note(picture.native->name); }
void StatusBarItem::setDimmed(bool dimmed) { note(dimmed ? "dimmed" : "plain"); }
void StatusBarItem::setToolTip(const std::string &text) { note("tip " + text); }
void *menuHandle(QMenu &menu) { return &menu; }

void becomeAccessory() { note("accessory"); }
void activateApplication() { note("activate"); }
void hideApplication() { note("hide"); }
struct ReopenListener::Native {};
ReopenListener::ReopenListener(std::function<void()> reopened) { fake().reopen = std::move(reopened); }
ReopenListener::~ReopenListener() { fake().reopen = nullptr; }

struct RunningApplications::Native {};
RunningApplications::RunningApplications(const std::string &bundleIdentifier) { note(bundleIdentifier); }
RunningApplications::~RunningApplications() = default;
std::size_t RunningApplications::count() const { return fake().processes.size(); }
long long RunningApplications::processIdentifier(std::size_t at) const { return fake().processes.at(at); }
bool RunningApplications::isTerminated(std::size_t at) const { return fake().terminated[at]; }
void RunningApplications::terminate(std::size_t at) { noteAt("terminate", at); }
void RunningApplications::forceTerminate(std::size_t at) { noteAt("force", at); }

const unsigned SOCKET_DESCRIPTOR = 2;
const int TCP_SOCKET = 2, LISTENING = 1;
const unsigned SPEAKS_V4 = 1;
std::vector<int> processesOf(unsigned) {
    std::vector<int> processes;
    for (const auto &[process, sockets] : fake().sockets)
        processes.push_back(process);
    return processes;
}
std::vector<Descriptor> descriptorsOf(int process) {
    std::vector<Descriptor> descriptors{{0, 1}};
    for (int i = 0; i < static_cast<int>(fake().sockets[process].size()); ++i)
        descriptors.push_back({i, SOCKET_DESCRIPTOR});
    return descriptors;
}
TcpSocket tcpSocket(int process, int descriptor) {
    return fake().sockets[process].at(static_cast<std::size_t>(descriptor));
}

unsigned long long heldModifiers() { return fake().modifiers; }
std::string computerName() { return fake().name; }
std::string preferredLanguageLines() { return fake().languages; }

Proxy proxyFor(const std::string &) { return fake().proxy; }
Proxy proxyByScript(const std::string &script, const std::string &) {
    note("run " + script);
    return fake().scriptProxy;
}
std::string textAt(const std::string &url) {
    note("get " + url);
    return fake().script;
}

void makeNotice(void *) { note("notice"); }
bool canPreventActivation(void *) { return fake().preventsActivation; }
void preventActivation(void *) { note("prevents activation"); }
void makeFloating(void *) { note("floating"); }
void makeKeyAndOrderFront(void *) { note("key and front"); }
void orderFrontRegardless(void *) { note("front"); }
Point middleOfMainScreen() { return fake().mainScreen; }
void announce(const std::string &text) { note("read " + text); }

struct HiddenMainMenu::Native {};
HiddenMainMenu::HiddenMainMenu(const std::string &applicationTitle, const std::string &editTitle) {
    note(applicationTitle);
    note(editTitle);
}
HiddenMainMenu::~HiddenMainMenu() = default;
void HiddenMainMenu::addSeparator() { note("---"); }
void HiddenMainMenu::add(const std::string &title, const std::string &selector, const std::string &key) {
    note(title + ' ' + selector + ' ' + key);
}
void HiddenMainMenu::install() { note("install"); }

void writeSystemLog(const std::string &line) { note("log " + line); }

} // namespace korvel::native
