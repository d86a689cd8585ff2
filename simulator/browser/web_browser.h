#pragma once

#include "simulator/browser/web_driver.h"

namespace korvel::sim {

// A real browser (Chromium without a window) that reaches this machine alone and takes any certificate. What an
// operation names by a CSS selector may still be to come: it is waited for, 10 seconds long. Every operation is false,
// or nothing, on failure; error() then says why.
class WebBrowser {
public:
    WebBrowser();
    ~WebBrowser();

    // Opens an address and waits until the page is loaded.
    bool open(const QString &url);
    // Replaces the text of an input field.
    bool fill(const QString &selector, const QString &text);
    bool click(const QString &selector);
    // The text that an element shows.
    std::optional<QString> text(const QString &selector);
    // Saves what the window would show, as PNG.
    bool screenshot(const QString &file);
    QString error() const { return driver.error(); }

private:
    QString element(const QString &selector); // its path; empty when there is none
    std::optional<QJsonValue> post(const QString &path, const QJsonObject &body = {});

    WebDriver driver;
    QString session; // its path
};

} // namespace korvel::sim
