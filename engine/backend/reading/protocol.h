#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vessa::core {

// How the program and its reader program talk over their socket. The
// program asks for one file at a time; the reader answers each request
// with an outcome and, when it read the file, the answer (description.h).

enum class FileKind : char { Model = 'm', Sound = 's' };

// What one reading may take: wall-clock time (the processor time allowed
// is the same, in whole seconds) and address space.
struct ReadingLimits {
    std::chrono::milliseconds time{10000};
    std::uint64_t memoryBytes = std::uint64_t{1} << 30;
};

struct Request {
    FileKind kind = FileKind::Model;
    ReadingLimits limits;
    std::string path;
};

enum class Outcome : char {
    Answered = 'A',    // the reading ended normally: see the answer
    Failed = 'F',      // the reading crashed, or ran out of memory or processor time
    TookTooLong = 'T', // stopped at the time limit
    TooBig = 'B',      // the answer grew beyond kMaxAnswerBytes
    Lost = 'L',        // (the program's side only) the reader program could not be reached
};

constexpr std::size_t kMaxPathBytes = 4096;

using Deadline = std::optional<std::chrono::steady_clock::time_point>; // none: wait for ever

// Whole writes and reads on a file descriptor, through interruptions. A
// write to a closed socket or pipe fails instead of raising SIGPIPE.
bool writeAll(int fd, std::string_view bytes);
bool readAll(int fd, void* to, std::size_t size, const Deadline& deadline);

std::string requestBytes(const Request& request);
// nullopt at the end of the stream or on a malformed request.
std::optional<Request> readRequest(int fd);

std::string replyHeader(Outcome outcome, std::uint64_t answerBytes);

} // namespace vessa::core
