#include "LoopbackServer.h"

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace Testing {

namespace {

#ifdef _WIN32
using Socket = SOCKET;
using SocketLength = int;
using SendLength = int;
constexpr int kSendingEnds = SD_SEND;
void start() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data); // the system counts; the test's end ends it
}
#else
using Socket = int;
using SocketLength = socklen_t;
using SendLength = std::size_t;
constexpr int kSendingEnds = SHUT_WR;
void start() {
    signal(SIGPIPE, SIG_IGN); // a client may have gone
}
void closesocket(Socket socket) {
    close(socket);
}
#endif

Socket openSocket() {
    return ::socket(AF_INET, SOCK_STREAM, 0);
}

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

std::string pathAskedFor(Socket client) {
    std::array<char, 4096> request{};
    const auto count = recv(client, request.data(), static_cast<SendLength>(request.size()), 0);
    const std::string text(request.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    const std::size_t begin = text.find(' ') + 1;
    return text.substr(begin, text.find(' ', begin) - begin);
}

} // namespace

LoopbackServer::LoopbackServer(std::map<std::string, std::string> answers) : answers_(std::move(answers)) {
    start();
    const Socket socket = openSocket();
    sockaddr_in address = loopback(0);
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    SocketLength size = sizeof address;
    if (bind(socket, plain, size) != 0 || listen(socket, 8) != 0 || getsockname(socket, plain, &size) != 0) {
        throw std::runtime_error("No server on loopback");
    }
    socket_ = static_cast<std::intptr_t>(socket);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

LoopbackServer::~LoopbackServer() {
    stopping_ = true;
    const sockaddr_in address = loopback(port_);
    const Socket last = openSocket(); // wakes the thread, which closing its socket would not
    connect(last, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    closesocket(last);
    thread_.join();
    closesocket(static_cast<Socket>(socket_));
}

std::string LoopbackServer::address(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

void LoopbackServer::serve() {
    std::vector<Socket> silent;
    while (!stopping_) {
        const Socket client = accept(static_cast<Socket>(socket_), nullptr, nullptr);
        const auto answer = stopping_ ? answers_.end() : answers_.find(pathAskedFor(client));
        if (answer == answers_.end()) {
            silent.push_back(client);
            continue;
        }
        send(client, answer->second.data(), static_cast<SendLength>(answer->second.size()), 0);
        shutdown(client, kSendingEnds);
        closesocket(client);
    }
    for (const Socket client : silent) {
        closesocket(client);
    }
}

std::string reply(const std::string& body, const std::string& status, const std::string& more) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + more +
           "Connection: close\r\n\r\n" + body;
}

} // namespace Testing
