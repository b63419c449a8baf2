// SPDX-License-Identifier: Apache-2.0
// A web server of a test's own: on this machine, one answer for every request.
#pragma once
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

namespace support {

// Listens on a free port of 127.0.0.1 and gives `answer` as it is to every connection; an empty one is never sent, and
// the connection stays open.
class LocalServer {
public:
    explicit LocalServer(std::string answer) : m_answer(std::move(answer)), m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
        listen(m_socket, 8);
        socklen_t size = sizeof address;
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { Run(); });
    }
    ~LocalServer() {
        m_stop = true;
        m_thread.join();
        close(m_socket);
    }
    LocalServer(const LocalServer&) = delete;
    LocalServer& operator=(const LocalServer&) = delete;

    std::string Url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(m_port) + path; }
    int Requests() const { return m_requests; }
    // The last request as it came.
    std::string Request() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_request;
    }

private:
    static bool IsReady(int descriptor) {
        pollfd entry{descriptor, POLLIN, 0};
        return poll(&entry, 1, 20) > 0;
    }
    void Run() {
        while (!m_stop) {
            if (!IsReady(m_socket)) continue;
            const int connection = accept(m_socket, nullptr, nullptr);
            if (connection >= 0) Serve(connection);
            close(connection);
        }
    }
    void Serve(int connection) {
        char block[65536];
        const ssize_t got = recv(connection, block, sizeof block, 0);
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_request.assign(block, got > 0 ? static_cast<std::size_t>(got) : 0);
        }
        ++m_requests;
        std::size_t sent = 0;
        while (sent < m_answer.size()) {
            const ssize_t put = send(connection, m_answer.data() + sent, m_answer.size() - sent, MSG_NOSIGNAL);
            if (put <= 0) break;
            sent += static_cast<std::size_t>(put);
        }
        while (m_answer.empty() && !m_stop && !IsReady(connection)) continue;
    }

    std::string m_answer;
    int m_socket;
    int m_port = 0;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_requests{0};
    std::mutex m_mutex;
    std::string m_request;
    std::thread m_thread;
};

// A whole answer with that status and body.
inline std::string HttpAnswer(const std::string& status, const std::string& body, const std::string& headers = "") {
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
           headers + "\r\n" + body;
}

}  // namespace support
