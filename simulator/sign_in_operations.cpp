#include "simulator/sign_in_operations.h"

#include "simulator/wording.h"

#include <QRegularExpression>

#include <algorithm>
#include <map>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

struct Refusal {
    QLatin1StringView field; // of the window, where the user should look
    Wording text;
};

constexpr Refusal NO_NAME{"username"_L1, {u"请输入手机号或邮箱", u"Enter your phone number or email."}};
constexpr Refusal NO_PASSWORD{"password"_L1, {u"请输入密码", u"Enter your password."}};
constexpr Refusal NOT_THE_PASSWORD{"password"_L1, WRONG_PASSWORD};
constexpr Refusal BAD_PHONE{"phone"_L1, {u"请输入 11 位手机号", u"Enter a phone number of 11 digits."}};
constexpr Refusal UNKNOWN_PHONE{"phone"_L1, {u"该手机号尚未注册", u"There's no account with this phone number."}};
constexpr Refusal PHONE_IN_USE{"phone"_L1, {u"该手机号已注册", u"This phone number already has an account."}};
constexpr Refusal BAD_CODE{"code"_L1, {u"请输入 6 位验证码", u"Enter the code of 6 digits."}};
constexpr Refusal WRONG_CODE{"code"_L1, {u"验证码不正确或已过期", u"The code is wrong or has expired."}};
constexpr Refusal SHORT_PASSWORD{"password"_L1, {u"密码至少 8 位", u"Use at least 8 characters for the password."}};
constexpr Refusal NO_CONSENT{"agree"_L1,
                             {u"请先同意用户协议和隐私政策", u"Agree to the terms and the privacy policy."}};
constexpr Wording TOO_SOON{u"验证码已发送，请稍后再试", u"A code was sent just now. Wait a moment."};
constexpr Wording UNKNOWN_OPERATION{u"不支持的操作", u"This operation isn't known."};

constexpr int NEXT_CODE_SECONDS = 60; // from one code to the next

// One request on the way through its checks.
struct Attempt {
    AccountBook &book;
    QJsonObject request;
    bool chinese;
    qint64 now;

    QString text(QLatin1StringView key) const { return request.value(key).toString(); }
    QString phone() const { return text("phone"_L1); }
};

SignInOutcome failed(const Attempt &attempt, const Refusal &refusal) {
    return {{{u"ok"_s, false}, {u"error"_s, refusal.text.in(attempt.chinese)}, {u"field"_s, refusal.field}}};
}

SignInOutcome signedIn(const QString &account) { return {{{u"ok"_s, true}, {u"user"_s, account}}, account}; }

bool matches(const QString &text, const QString &pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

// What is wrong with the phone number for a purpose; null if nothing.
const Refusal *phoneTrouble(const Attempt &attempt, bool registering) {
    if (!matches(attempt.phone(), u"1[0-9]{10}"_s))
        return &BAD_PHONE;
    const bool known = findUser(attempt.book, attempt.phone()) != nullptr;
    if (known == registering)
        return registering ? &PHONE_IN_USE : &UNKNOWN_PHONE;
    return nullptr;
}

// The same of the code, which is used up if it is right.
const Refusal *codeTrouble(const Attempt &attempt, const QString &purpose) {
    const QString code = attempt.text("code"_L1);
    if (!matches(code, u"[0-9]{6}"_s))
        return &BAD_CODE;
    return useCode(attempt.book, attempt.phone(), purpose, code, attempt.now) ? nullptr : &WRONG_CODE;
}

const Refusal *newPasswordTrouble(const Attempt &attempt) {
    constexpr qsizetype FEWEST = 8;
    return attempt.text("password"_L1).size() < FEWEST ? &SHORT_PASSWORD : nullptr;
}

SignInOutcome logIn(const Attempt &attempt) {
    const QString name = attempt.text("username"_L1);
    const QString password = attempt.text("password"_L1);
    if (name.isEmpty() || password.isEmpty())
        return failed(attempt, name.isEmpty() ? NO_NAME : NO_PASSWORD);
    const UserAccount *user = findUser(attempt.book, name, password);
    return user ? signedIn(user->name) : failed(attempt, NOT_THE_PASSWORD);
}

SignInOutcome logInByCode(const Attempt &attempt) {
    if (const Refusal *trouble = phoneTrouble(attempt, false))
        return failed(attempt, *trouble);
    if (const Refusal *trouble = codeTrouble(attempt, u"login"_s))
        return failed(attempt, *trouble);
    return signedIn(findUser(attempt.book, attempt.phone())->name);
}

SignInOutcome registerUser(const Attempt &attempt) {
    if (const Refusal *trouble = phoneTrouble(attempt, true))
        return failed(attempt, *trouble);
    if (const Refusal *trouble = newPasswordTrouble(attempt))
        return failed(attempt, *trouble);
    if (!attempt.request.value("agree"_L1).toBool())
        return failed(attempt, NO_CONSENT);
    if (const Refusal *trouble = codeTrouble(attempt, u"register"_s))
        return failed(attempt, *trouble);
    addUser(attempt.book, {attempt.phone(), attempt.phone(), attempt.text("password"_L1)});
    return signedIn(attempt.phone());
}

SignInOutcome resetPassword(const Attempt &attempt) {
    if (const Refusal *trouble = phoneTrouble(attempt, false))
        return failed(attempt, *trouble);
    if (const Refusal *trouble = newPasswordTrouble(attempt))
        return failed(attempt, *trouble);
    if (const Refusal *trouble = codeTrouble(attempt, u"reset"_s))
        return failed(attempt, *trouble);
    UserAccount *user = findUser(attempt.book, attempt.phone());
    user->password = attempt.text("password"_L1);
    return signedIn(user->name);
}

SignInOutcome sendCode(const Attempt &attempt) {
    const QString purpose = attempt.text("purpose"_L1);
    if (const Refusal *trouble = phoneTrouble(attempt, purpose == "register"_L1))
        return failed(attempt, *trouble);
    const SmsCode *last = lastCode(attempt.book, attempt.phone());
    const qint64 waitMs = last ? last->sent + NEXT_CODE_SECONDS * 1000LL - attempt.now : 0;
    if (waitMs > 0)
        return {
            {{u"ok"_s, false}, {u"retryAfter"_s, (waitMs + 999) / 1000}, {u"error"_s, TOO_SOON.in(attempt.chinese)}}};
    sendCode(attempt.book, attempt.phone(), purpose, attempt.now);
    return {{{u"ok"_s, true}, {u"next"_s, NEXT_CODE_SECONDS}}};
}

} // namespace

SignInOutcome performSignIn(AccountBook &book, const QJsonObject &request, bool chinese, qint64 now) {
    static const std::map<QString, SignInOutcome (*)(const Attempt &)> operations{
        {u"login"_s, logIn},         {u"login-code"_s, logInByCode}, {u"register"_s, registerUser},
        {u"reset"_s, resetPassword}, {u"send-code"_s, sendCode},
    };
    const auto operation = operations.find(request.value("op"_L1).toString());
    if (operation == operations.end())
        return {{{u"ok"_s, false}, {u"error"_s, UNKNOWN_OPERATION.in(chinese)}}};
    return operation->second({book, request, chinese, now});
}

} // namespace korvel::sim
