// SPDX-License-Identifier: Apache-2.0
// A web server of a test's own, on this machine: a function gives the answer to each request.
#pragma once
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/gate.h"

namespace support {

struct WebReply {
    WebReply(std::string answer) : bytes(std::move(answer)) {}
    WebReply(const char* answer) : bytes(answer) {}

    std::string bytes;     // the whole answer as it goes over the wire; none: the connection stays open in silence
    bool endless = false;  // the last byte is sent again and again
    std::chrono::milliseconds delay{0};
};

// A whole answer with that status and body.
inline std::string HttpAnswer(const std::string& status, const std::string& body, const std::string& headers = "") {
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
           headers + "\r\n" + body;
}

// The decoded value of a field of the request's address or posted form; empty if it has none.
inline std::string QueryField(const std::string& request, const std::string& name) {
    const std::string line = request.substr(0, request.find(" HTTP/"));
    std::size_t at = line.find("?" + name + "=");
    if (at == std::string::npos) at = line.find("&" + name + "=");
    if (at == std::string::npos) return {};
    std::string value;
    for (at += name.size() + 2; at < line.size() && line[at] != '&'; ++at) {
        if (line[at] == '%') {
            value += static_cast<char>(std::stoi(line.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            value += line[at];
        }
    }
    return value;
}

// Listens on a free port of 127.0.0.1, each connection in a thread of its own. With `tls` it has a certificate that
// nobody vouches for.
class WebServer {
public:
    using Handler = std::function<WebReply(const std::string& request)>;

    explicit WebServer(Handler handler, bool tls = false)
        : m_handler(std::move(handler)), m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
        if (tls) MakeCertificate();
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
        listen(m_socket, 64);
        socklen_t size = sizeof address;
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { Run(); });
    }
    ~WebServer() {
        m_stop = true;
        m_thread.join();
        for (std::thread& connection : m_connections) connection.join();
        close(m_socket);
        if (m_context != nullptr) SSL_CTX_free(m_context);
    }
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    std::string Url(const std::string& path) const {
        return (m_context != nullptr ? "https://localhost:" : "http://127.0.0.1:") + std::to_string(m_port) + path;
    }
    // Requests that came whole; connections that were made, whatever came of them.
    int Requests() const { return m_requests; }
    int Connections() const { return m_accepted; }
    // All requests as they came.
    std::vector<std::string> AllRequests() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_all;
    }
    // The last one; empty before the first.
    std::string Request() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_all.empty() ? std::string() : m_all.back();
    }

private:
    struct Wire {
        int socket;
        SSL* ssl;

        ssize_t Read(char* block, std::size_t size) const {
            return ssl != nullptr ? SSL_read(ssl, block, static_cast<int>(size)) : recv(socket, block, size, 0);
        }
        bool Write(const std::string& bytes) const {
            std::size_t sent = 0;
            while (sent < bytes.size()) {
                const char* from = bytes.data() + sent;
                const std::size_t left = bytes.size() - sent;
                const ssize_t put = ssl != nullptr ? SSL_write(ssl, from, static_cast<int>(left))
                                                   : send(socket, from, left, MSG_NOSIGNAL);
                if (put <= 0) return false;
                sent += static_cast<std::size_t>(put);
            }
            return true;
        }
    };

    static bool IsReady(int descriptor) {
        pollfd entry{descriptor, POLLIN, 0};
        return poll(&entry, 1, 20) > 0;
    }

    void MakeCertificate() {
        EVP_PKEY* key = EVP_EC_gen("P-256");
        X509* certificate = X509_new();
        X509_gmtime_adj(X509_getm_notBefore(certificate), 0);
        X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
        X509_set_pubkey(certificate, key);
        X509_NAME* name = X509_get_subject_name(certificate);
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"), -1,
                                   -1, 0);
        X509_set_issuer_name(certificate, name);
        X509_sign(certificate, key, EVP_sha256());
        m_context = SSL_CTX_new(TLS_server_method());
        SSL_CTX_use_certificate(m_context, certificate);
        SSL_CTX_use_PrivateKey(m_context, key);
        X509_free(certificate);
        EVP_PKEY_free(key);
    }

    void Run() {
        while (!m_stop) {
            if (!IsReady(m_socket)) continue;
            const int connection = accept(m_socket, nullptr, nullptr);
            if (connection < 0) continue;
            ++m_accepted;
            m_connections.emplace_back([this, connection] { Talk(connection); });
        }
    }
    void Talk(int connection) {
        Wire wire{connection, nullptr};
        timeval patience{10, 0};
        setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        if (m_context != nullptr) {
            wire.ssl = SSL_new(m_context);
            SSL_set_fd(wire.ssl, connection);
        }
        if (wire.ssl == nullptr || SSL_accept(wire.ssl) == 1) Serve(wire);
        if (wire.ssl != nullptr) SSL_free(wire.ssl);
        close(connection);
    }
    // The head, and as many bytes behind it as it says.
    static std::string Receive(const Wire& wire) {
        std::string request;
        std::size_t wanted = std::string::npos;
        char block[65536];
        while (request.size() < wanted) {
            const ssize_t got = wire.Read(block, sizeof block);
            if (got <= 0) return {};
            request.append(block, static_cast<std::size_t>(got));
            const std::size_t end = request.find("\r\n\r\n");
            if (wanted != std::string::npos || end == std::string::npos) continue;
            const std::size_t length = request.find("Content-Length: ");
            const bool hasBody = length < end;
            wanted = end + 4 + (hasBody ? std::stoul(request.substr(length + 16)) : 0);
            if (request.find("Expect: 100-continue") < end) wire.Write("HTTP/1.1 100 Continue\r\n\r\n");
        }
        return request;
    }
    void Serve(const Wire& wire) {
        const std::string request = Receive(wire);
        if (request.empty()) return;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_all.push_back(request);
        }
        ++m_requests;
        PassGate();
        const WebReply reply = m_handler(request);
        PassGate();
        for (auto waited = std::chrono::milliseconds(0); waited < reply.delay && !m_stop; waited += Tick())
            std::this_thread::sleep_for(Tick());
        bool open = wire.Write(reply.bytes);
        const std::string more(65536, reply.bytes.empty() ? ' ' : reply.bytes.back());
        while (reply.endless && open && !m_stop) open = wire.Write(more);
        while (reply.bytes.empty() && !m_stop && !IsReady(wire.socket)) continue;
    }
    static std::chrono::milliseconds Tick() { return std::chrono::milliseconds(10); }

    Handler m_handler;
    int m_socket;
    int m_port = 0;
    SSL_CTX* m_context = nullptr;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_requests{0};
    std::atomic<int> m_accepted{0};
    std::mutex m_mutex;
    std::vector<std::string> m_all;
    std::list<std::thread> m_connections;
    std::thread m_thread;
};

}  // namespace support
