#include "reading/protocol.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace vessa::core {

namespace {

template <typename T> void append(std::string& to, T value) {
    to.append(reinterpret_cast<const char*>(&value), sizeof value);
}

int millisecondsUntil(const Deadline& deadline) {
    if (!deadline)
        return -1;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<long long>(0, left.count()));
}

} // namespace

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t written = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written < 0 && errno == ENOTSOCK)
            written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool readAll(int fd, void* to, std::size_t size, const Deadline& deadline) {
    auto* at = static_cast<char*>(to);
    while (size > 0) {
        pollfd waiting{fd, POLLIN, 0};
        const int ready = poll(&waiting, 1, millisecondsUntil(deadline));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        const ssize_t got = read(fd, at, size);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        at += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

std::string requestBytes(const Request& request) {
    std::string bytes(1, static_cast<char>(request.kind));
    append(bytes, static_cast<std::int64_t>(request.limits.time.count()));
    append(bytes, request.limits.memoryBytes);
    append(bytes, static_cast<std::uint32_t>(request.path.size()));
    return bytes + request.path;
}

std::optional<Request> readRequest(int fd) {
    char kind = 0;
    std::int64_t milliseconds = 0;
    std::uint32_t pathBytes = 0;
    Request request;
    if (!readAll(fd, &kind, 1, std::nullopt) ||
        !readAll(fd, &milliseconds, sizeof milliseconds, std::nullopt) ||
        !readAll(fd, &request.limits.memoryBytes, sizeof request.limits.memoryBytes,
                 std::nullopt) ||
        !readAll(fd, &pathBytes, sizeof pathBytes, std::nullopt))
        return std::nullopt;
    if ((kind != static_cast<char>(FileKind::Model) &&
         kind != static_cast<char>(FileKind::Sound)) ||
        milliseconds <= 0 || pathBytes > kMaxPathBytes)
        return std::nullopt;
    request.kind = static_cast<FileKind>(kind);
    request.limits.time = std::chrono::milliseconds(milliseconds);
    request.path.resize(pathBytes);
    if (!readAll(fd, request.path.data(), pathBytes, std::nullopt))
        return std::nullopt;
    return request;
}

std::string replyHeader(Outcome outcome, std::uint64_t answerBytes) {
    std::string bytes(1, static_cast<char>(outcome));
    append(bytes, answerBytes);
    return bytes;
}

} // namespace vessa::core
