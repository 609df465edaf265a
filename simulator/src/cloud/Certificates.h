#ifndef HOMELOOM_SIMULATOR_CERTIFICATES_H
#define HOMELOOM_SIMULATOR_CERTIFICATES_H

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <openssl/ssl.h>
#include <openssl/x509v3.h>

namespace simulator {

template <typename T, void (*Free)(T*)>
struct OpenSslDeleter {
    void operator()(T* object) const { Free(object); }
};
using Certificate = std::unique_ptr<X509, OpenSslDeleter<X509, X509_free>>;
using PrivateKey = std::unique_ptr<EVP_PKEY, OpenSslDeleter<EVP_PKEY, EVP_PKEY_free>>;

/// An authority of its own, that signs a certificate for any host name when it is first asked for. Throws
/// std::runtime_error when OpenSSL fails. Thread-safe.
class CertificateAuthority {
public:
    CertificateAuthority();

    /// The authority's own certificate, as clients want it in their CA file.
    std::string pem() const;
    /// Shows that host's certificate on a connection. False if that can't be done.
    bool use(SSL* connection, const std::string& host);

private:
    Certificate sign(const std::string& host) const;

    PrivateKey _key;      // the authority's
    PrivateKey _hostKey;  // of all hosts
    Certificate _certificate;
    std::mutex _mutex;  // guards the next one
    std::map<std::string, Certificate> _signed;
};

}  // namespace simulator

#endif
