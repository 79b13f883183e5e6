#pragma once

#include "reading/protocol.h"

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace vessa::core {

// Files that a user did not write (a friend's world, a download) are read
// in a process of their own: the reader program, started on first use,
// which reads each file in a fresh copy of itself with limited memory and
// time. A file that crashes or stalls a reader costs a refusal, never the
// program. The program gets back a plain description (description.h) that
// it checks before it builds anything from it.
//
// The reader program is kept running between files; when it is lost, the
// next request starts it again. One request at a time.
class ReaderProcess {
public:
    struct Reply {
        Outcome outcome = Outcome::Lost;
        std::string answer; // when Answered
    };

    explicit ReaderProcess(std::filesystem::path program, ReadingLimits limits = {});
    ~ReaderProcess();
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;

    Reply read(FileKind kind, const std::string& path);

    // The process's reader, running defaultProgram().
    static ReaderProcess& shared();
    // The program vessa_reader that lies beside the binary holding this
    // code (the engine's module, or a test or benchmark).
    static std::filesystem::path defaultProgram();

private:
    bool start();
    void stop();
    Reply ask(const Request& request);

    std::filesystem::path program_;
    ReadingLimits limits_;
    pid_t pid_ = -1;
    int socket_ = -1;
    std::mutex busy_;
};

// When a file was last written and how long it is: a file is read again
// only when this changed. nullopt when there is no such file.
struct FileStamp {
    std::filesystem::file_time_type written;
    std::uintmax_t size = 0;
    bool operator==(const FileStamp&) const = default;
};
std::optional<FileStamp> stampOf(const std::string& path);

} // namespace vessa::core
