#include "Certificates.h"

#include <stdexcept>

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>

namespace simulator {

namespace {

constexpr long kBefore = -24L * 60 * 60;       // a clock that is set back does no harm
constexpr long kAfter = 3653L * 24 * 60 * 60;  // nor one that goes on for ten years

template <typename T>
T* checked(T* object) {
    if (object == nullptr) {
        throw std::runtime_error("OpenSSL can't make a certificate");
    }
    return object;
}

void check(int result) {
    checked(result > 0 ? &result : nullptr);
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* const extension = checked(X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
    const int result = X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
    check(result);
}

// Without issuer, extensions and signature.
Certificate blankCertificate(const std::string& name, EVP_PKEY* key) {
    Certificate certificate(checked(X509_new()));
    check(X509_set_version(certificate.get(), X509_VERSION_3));
    unsigned serial = 0;
    check(RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial));
    check(ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate.get()), serial + 1ULL));
    checked(X509_gmtime_adj(X509_getm_notBefore(certificate.get()), kBefore));
    checked(X509_gmtime_adj(X509_getm_notAfter(certificate.get()), kAfter));
    check(X509_set_pubkey(certificate.get(), key));
    check(X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                                     reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0));
    return certificate;
}

}  // namespace

CertificateAuthority::CertificateAuthority()
    : _key(checked(EVP_EC_gen("P-256"))),
      _hostKey(checked(EVP_EC_gen("P-256"))),
      _certificate(blankCertificate("HomeLoom desk", _key.get())) {
    X509* const own = _certificate.get();
    check(X509_set_issuer_name(own, X509_get_subject_name(own)));
    addExtension(own, own, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(own, own, NID_key_usage, "critical,keyCertSign");
    addExtension(own, own, NID_subject_key_identifier, "hash");
    check(X509_sign(own, _key.get(), EVP_sha256()));
}

std::string CertificateAuthority::pem() const {
    const std::unique_ptr<BIO, decltype(&BIO_free_all)> memory(checked(BIO_new(BIO_s_mem())), BIO_free_all);
    check(PEM_write_bio_X509(memory.get(), _certificate.get()));
    char* text = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &text);
    return std::string(text, static_cast<std::size_t>(size));
}

Certificate CertificateAuthority::sign(const std::string& host) const {
    // A common name has room for 64 letters; what counts is the alternative name.
    Certificate certificate = blankCertificate(host.substr(0, 64), _hostKey.get());
    check(X509_set_issuer_name(certificate.get(), X509_get_subject_name(_certificate.get())));
    addExtension(certificate.get(), _certificate.get(), NID_subject_alt_name, "DNS:" + host);
    addExtension(certificate.get(), _certificate.get(), NID_authority_key_identifier, "keyid");
    check(X509_sign(certificate.get(), _key.get(), EVP_sha256()));
    return certificate;
}

bool CertificateAuthority::use(SSL* connection, const std::string& host) {
    const std::lock_guard<std::mutex> lock(_mutex);
    Certificate& certificate = _signed[host];
    if (!certificate) {
        certificate = sign(host);
    }
    return SSL_use_certificate(connection, certificate.get()) == 1 &&
           SSL_use_PrivateKey(connection, _hostKey.get()) == 1;
}

}  // namespace simulator
