#include "simulator/certificates.h"

#include <memory>

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace korvel::sim {

namespace {

template <auto release>
struct Release {
    template <class T>
    void operator()(T *object) const {
        release(object);
    }
};

using Bio = std::unique_ptr<BIO, Release<BIO_free_all>>;
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;

constexpr long DAY = 24 * 60 * 60;
constexpr int AUTHORITY_DAYS = 3650;

Bio readingFrom(const QByteArray &bytes) { return Bio(BIO_new_mem_buf(bytes.constData(), int(bytes.size()))); }

QByteArray textOf(const Bio &bio) {
    char *text = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &text);
    return size > 0 ? QByteArray(text, size) : QByteArray();
}

TlsIdentity pemOf(const Certificate &certificate, const Key &key) {
    const Bio certificateText(BIO_new(BIO_s_mem()));
    const Bio keyText(BIO_new(BIO_s_mem()));
    if (PEM_write_bio_X509(certificateText.get(), certificate.get()) != 1 ||
        PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1)
        return {};
    return {textOf(certificateText), textOf(keyText)};
}

bool setSerial(X509 *certificate) {
    unsigned char bytes[16];
    if (RAND_bytes(bytes, sizeof bytes) != 1)
        return false;
    bytes[0] &= 0x7f; // positive
    const std::unique_ptr<BIGNUM, Release<BN_free>> number(BN_bin2bn(bytes, sizeof bytes, nullptr));
    return number && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr;
}

// A certificate without issuer, extensions and signature.
Certificate blank(const QByteArray &name, const Key &key, int fromDay, int toDay) {
    Certificate certificate(X509_new());
    X509 *made = certificate.get();
    const auto *text = reinterpret_cast<const unsigned char *>(name.constData());
    const bool filled =
        made && X509_set_version(made, X509_VERSION_3) == 1 && setSerial(made) &&
        X509_gmtime_adj(X509_getm_notBefore(made), fromDay * DAY) != nullptr &&
        X509_gmtime_adj(X509_getm_notAfter(made), toDay * DAY) != nullptr && X509_set_pubkey(made, key.get()) == 1 &&
        X509_NAME_add_entry_by_txt(X509_get_subject_name(made), "CN", MBSTRING_UTF8, text, int(name.size()), -1, 0) ==
            1;
    return filled ? std::move(certificate) : nullptr;
}

bool extend(X509 *certificate, X509 *issuer, int kind, const QByteArray &value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value.constData()));
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

bool sign(X509 *certificate, X509 *issuer, EVP_PKEY *key) {
    return X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1 &&
           X509_sign(certificate, key, EVP_sha256()) > 0;
}

} // namespace

TlsIdentity makeAuthority(const QByteArray &name) {
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate = key ? blank(name, key, -365, AUTHORITY_DAYS) : nullptr;
    X509 *made = certificate.get();
    if (!made || !extend(made, made, NID_basic_constraints, "critical,CA:TRUE,pathlen:0") ||
        !extend(made, made, NID_key_usage, "critical,keyCertSign,cRLSign") ||
        !extend(made, made, NID_subject_key_identifier, "hash") || !sign(made, made, key.get()))
        return {};
    return pemOf(certificate, key);
}

TlsIdentity issueCertificate(const TlsIdentity &authority, const ServerCertificate &wanted) {
    const Certificate issuer(PEM_read_bio_X509(readingFrom(authority.certificate).get(), nullptr, nullptr, nullptr));
    const Key issuerKey(PEM_read_bio_PrivateKey(readingFrom(authority.key).get(), nullptr, nullptr, nullptr));
    const Key key(EVP_EC_gen("P-256"));
    if (!issuer || !issuerKey || !key)
        return {};
    const Certificate certificate = blank(wanted.name, key, wanted.fromDay, wanted.toDay);
    X509 *made = certificate.get();
    if (!made || !extend(made, issuer.get(), NID_basic_constraints, "critical,CA:FALSE") ||
        !extend(made, issuer.get(), NID_key_usage, "critical,digitalSignature") ||
        !extend(made, issuer.get(), NID_ext_key_usage, "serverAuth") ||
        !extend(made, issuer.get(), NID_subject_key_identifier, "hash") ||
        !extend(made, issuer.get(), NID_authority_key_identifier, "keyid:always") ||
        !extend(made, issuer.get(), NID_subject_alt_name, wanted.altNames) ||
        !sign(made, issuer.get(), issuerKey.get()))
        return {};
    return pemOf(certificate, key);
}

} // namespace korvel::sim
