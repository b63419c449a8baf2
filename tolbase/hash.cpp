// SPDX-License-Identifier: Apache-2.0
#include "tolbase/hash.h"

#include <openssl/evp.h>

#include <memory>

#include "tolbase/file.h"
#include "tolbase/filebytes.h"
#include "tolbase/text.h"

namespace {

// Small enough that a block is still in the processor's cache for the last of several digests, and that the memory
// comes from the heap rather than fresh, and so zeroed, from the system for each file.
constexpr std::size_t BlockBytes = std::size_t{1} << 16;

const EVP_MD* Digest(HashAlgorithm algorithm) {
    switch (algorithm) {
        case MD5:
            return EVP_md5();
        case SHA1:
            return EVP_sha1();
        case SHA256:
            return EVP_sha256();
        case SHA384:
            return EVP_sha384();
        case SHA512:
            return EVP_sha512();
    }
    return nullptr;
}

// One digest in the making. Once something fails, its result is empty.
class Hasher {
public:
    explicit Hasher(HashAlgorithm algorithm) : m_context(EVP_MD_CTX_new()) {
        const EVP_MD* digest = Digest(algorithm);
        m_good = m_context != nullptr && digest != nullptr && EVP_DigestInit_ex(m_context.get(), digest, nullptr) == 1;
    }
    void Add(const void* data, std::size_t size) {
        if (m_good && size > 0) m_good = EVP_DigestUpdate(m_context.get(), data, size) == 1;
    }
    wxString Finish() {
        unsigned char bytes[EVP_MAX_MD_SIZE];
        unsigned int size = 0;
        if (!m_good || EVP_DigestFinal_ex(m_context.get(), bytes, &size) != 1) return wxString();
        static const char hex[] = "0123456789abcdef";
        std::string text;
        for (unsigned int i = 0; i < size; ++i) {
            text += hex[bytes[i] >> 4];
            text += hex[bytes[i] & 15];
        }
        return wxString::FromAscii(text.c_str());
    }

private:
    struct Free {
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    std::unique_ptr<EVP_MD_CTX, Free> m_context;
    bool m_good = false;
};

}  // namespace

std::vector<wxString> TcvCalcHashesFromFile(const wxString& path, const std::vector<HashAlgorithm>& algorithms) {
    std::vector<wxString> digests(algorithms.size());
    const tolbase::FileDescriptor file = tolbase::OpenRegularFile(PathToBytes(path));
    if (!file.IsOk()) return digests;
    posix_fadvise(file.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    std::vector<Hasher> hashers;
    hashers.reserve(algorithms.size());
    for (const HashAlgorithm algorithm : algorithms) hashers.emplace_back(algorithm);
    const std::unique_ptr<char[]> block(new char[BlockBytes]);
    ssize_t got = 0;
    while ((got = tolbase::ReadBlock(file.Get(), block.get(), BlockBytes)) > 0)
        for (Hasher& hasher : hashers) hasher.Add(block.get(), static_cast<std::size_t>(got));
    if (got < 0) return digests;
    for (std::size_t i = 0; i < hashers.size(); ++i) digests[i] = hashers[i].Finish();
    return digests;
}

wxString TcvCalcHashFromFile(const wxString& path, HashAlgorithm algorithm, bool lowerCase) {
    const wxString digest = TcvCalcHashesFromFile(path, {algorithm}).front();
    return lowerCase ? digest : digest.Upper();
}

wxString TcvCalcHashFromMemory(const void* data, std::size_t size, HashAlgorithm algorithm) {
    Hasher hasher(algorithm);
    hasher.Add(data, size);
    return hasher.Finish();
}

wxString TcvCalcHashOfConcatenatedStrings(const VecString& strings, const wxString& separator) {
    const std::string utf8 = TolToUtf8(CatVecString(strings, separator));
    return TcvCalcHashFromMemory(utf8.data(), utf8.size(), MD5);
}
