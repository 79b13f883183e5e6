#include "reading/reader_process.h"

#include "reading/description.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

extern char** environ;

namespace vessa::core {

namespace {

constexpr const char* kProgramName = "vessa_reader";
// The reader program keeps its own time; this much more and it is lost.
constexpr std::chrono::milliseconds kGrace{3000};
// Time a file is given by its size: our own objects read in milliseconds, so a
// small file still being read after seconds has sent its reader round in circles,
// and the user should not wait the whole limit for it.
constexpr std::chrono::milliseconds kLeastTime{2000};
constexpr std::uintmax_t kBytesPerMillisecond = 1000;

ReadingLimits limitsForFile(ReadingLimits limits, const std::string& path) {
    std::error_code failed;
    const std::uintmax_t bytes = std::filesystem::file_size(path, failed);
    const auto bySize =
        kLeastTime + std::chrono::milliseconds(failed ? 0 : bytes / kBytesPerMillisecond);
    limits.time = std::min(limits.time, bySize);
    return limits;
}

// The file of the shared object (or program) this code was linked into.
std::filesystem::path thisBinary() {
    static const int anchor = 0;
    Dl_info info{};
    link_map* map = nullptr;
    if (dladdr1(&anchor, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) && map &&
        map->l_name && map->l_name[0] != '\0')
        return map->l_name;
    std::error_code failed;
    return std::filesystem::read_symlink("/proc/self/exe", failed);
}

} // namespace

ReaderProcess::ReaderProcess(std::filesystem::path program, ReadingLimits limits)
    : program_(std::move(program)), limits_(limits) {
}

ReaderProcess::~ReaderProcess() {
    stop();
}

ReaderProcess& ReaderProcess::shared() {
    static ReaderProcess reader(defaultProgram());
    return reader;
}

std::filesystem::path ReaderProcess::defaultProgram() {
    return thisBinary().parent_path() / kProgramName;
}

ReaderProcess::Reply ReaderProcess::read(FileKind kind, const std::string& path) {
    std::lock_guard<std::mutex> one(busy_);
    // The reader program keeps the folder it was started in.
    std::error_code failed;
    const std::string absolute = std::filesystem::absolute(path, failed).string();
    const Request request{kind, limitsForFile(limits_, absolute), absolute};
    if (failed || request.path.size() > kMaxPathBytes)
        return {Outcome::Failed, {}};
    // A reader program lost between two files is started once more.
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (socket_ < 0 && !start())
            return {};
        Reply reply = ask(request);
        if (reply.outcome != Outcome::Lost)
            return reply;
    }
    return {};
}

bool ReaderProcess::start() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, ends[1], 0);
    posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&files, 3);
    // Whatever the program did with its signals, the reader starts plain.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t all, none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::string program = program_.string();
    char* arguments[] = {program.data(), nullptr};
    const int failed = posix_spawn(&pid_, program.c_str(), &files, &attributes, arguments, environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    close(ends[1]);
    if (failed) {
        close(ends[0]);
        pid_ = -1;
        return false;
    }
    socket_ = ends[0];
    return true;
}

void ReaderProcess::stop() {
    if (socket_ >= 0)
        close(socket_);
    socket_ = -1;
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    pid_ = -1;
}

// A conversation that broke off, or a reader program that stopped keeping
// its own time, leaves the program without it: it is stopped.
ReaderProcess::Reply ReaderProcess::ask(const Request& request) {
    const auto deadline = std::chrono::steady_clock::now() + request.limits.time + kGrace;
    char said = 0;
    std::uint64_t size = 0;
    if (!writeAll(socket_, requestBytes(request)) || !readAll(socket_, &said, 1, deadline) ||
        !readAll(socket_, &size, sizeof size, deadline)) {
        stop();
        return {std::chrono::steady_clock::now() >= deadline ? Outcome::TookTooLong : Outcome::Lost,
                {}};
    }
    const auto outcome = static_cast<Outcome>(said);
    const bool known = outcome == Outcome::Answered || outcome == Outcome::Failed ||
                       outcome == Outcome::TookTooLong || outcome == Outcome::TooBig;
    Reply reply{outcome, {}};
    if (known && size <= kMaxAnswerBytes && (outcome == Outcome::Answered || size == 0)) {
        reply.answer.resize(size);
        if (readAll(socket_, reply.answer.data(), size, deadline))
            return reply;
    }
    stop();
    return {};
}

std::optional<FileStamp> stampOf(const std::string& path) {
    std::error_code failed;
    if (!std::filesystem::is_regular_file(path, failed))
        return std::nullopt;
    FileStamp stamp{std::filesystem::last_write_time(path, failed),
                    std::filesystem::file_size(path, failed)};
    if (failed)
        return std::nullopt;
    return stamp;
}

} // namespace vessa::core
