// Puts a certificate into the trusted roots of this Windows, or takes it out: "trust add|remove FILE" (DER).
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>
#include <windows.h>

int main(int count, char** arguments) {
    if (count != 3) return 2;
    std::ifstream file(arguments[2], std::ios::binary);
    const std::vector<char> octets((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const auto* data = reinterpret_cast<const BYTE*>(octets.data());
    const auto size = static_cast<DWORD>(octets.size());
    const HCERTSTORE store = CertOpenSystemStoreA(0, "ROOT");
    if (store == nullptr) return 1;
    bool done = false;
    if (std::strcmp(arguments[1], "add") == 0) {
        done = CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, data, size,
                                                CERT_STORE_ADD_REPLACE_EXISTING, nullptr);
    } else {
        const CERT_CONTEXT* own = CertCreateCertificateContext(X509_ASN_ENCODING, data, size);
        const CERT_CONTEXT* found =
            own == nullptr
                ? nullptr
                : CertFindCertificateInStore(store, X509_ASN_ENCODING, 0, CERT_FIND_EXISTING, own, nullptr);
        done = found != nullptr && CertDeleteCertificateFromStore(found);
        CertFreeCertificateContext(own);
    }
    const DWORD error = GetLastError();
    CertCloseStore(store, 0);
    if (!done) std::printf("error %lu\n", static_cast<unsigned long>(error));
    return done ? 0 : 1;
}
