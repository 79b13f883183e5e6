// vessa_reader: reads the files the program asks for, each in a fresh copy
// of itself (fork) with limits on memory, processor time and wall-clock
// time, and hands back what the copy answered, or why there is no answer.
// Its standard input is a socket to the program (protocol.h); when the
// program goes, the socket ends and so does the reader.
#include "reading/description.h"
#include "reading/file_describers.h"
#include "reading/protocol.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fcntl.h>

using namespace vessa::core;

namespace {

constexpr int kProgram = 0; // the socket to the program

void limitThisProcess(const ReadingLimits& limits) {
    const auto seconds =
        static_cast<rlim_t>(std::chrono::ceil<std::chrono::seconds>(limits.time).count());
    const rlimit processorTime{seconds, seconds + 1};
    setrlimit(RLIMIT_CPU, &processorTime);
    // The sanitizers reserve terabytes of address space for themselves; in
    // a sanitized build their own allocation limit stands in.
#if !defined(__SANITIZE_ADDRESS__)
    const rlimit memory{limits.memoryBytes, limits.memoryBytes};
    setrlimit(RLIMIT_AS, &memory);
#endif
    const rlimit nothing{0, 0};
    setrlimit(RLIMIT_CORE, &nothing);
    setrlimit(RLIMIT_FSIZE, &nothing); // a reading writes no files
    prctl(PR_SET_DUMPABLE, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

[[noreturn]] void readInThisCopy(const Request& request, int answerFd) {
    close(kProgram);
    limitThisProcess(request.limits);
    std::string answer;
    try {
        answer = request.kind == FileKind::Model ? describeModelFile(request.path)
                                                 : describeSoundFile(request.path);
    } catch (...) { // out of memory, or a reader's own complaint
        _exit(1);
    }
    _exit(writeAll(answerFd, answer) ? 0 : 1);
}

// The copy's answer, up to its end, the deadline or kMaxAnswerBytes.
Outcome collect(int fd, std::chrono::steady_clock::time_point deadline, std::string& answer) {
    char chunk[1 << 16];
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd waiting{fd, POLLIN, 0};
        const int ready = left.count() > 0 ? poll(&waiting, 1, static_cast<int>(left.count())) : 0;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready == 0)
            return Outcome::TookTooLong;
        const ssize_t got = ready > 0 ? read(fd, chunk, sizeof chunk) : -1;
        if (got < 0 && errno == EINTR)
            continue;
        if (got == 0)
            return Outcome::Answered;
        if (got < 0)
            return Outcome::Failed;
        if (answer.size() + static_cast<size_t>(got) > kMaxAnswerBytes)
            return Outcome::TooBig;
        answer.append(chunk, static_cast<size_t>(got));
    }
}

bool serve(const Request& request) {
    const auto deadline = std::chrono::steady_clock::now() + request.limits.time;
    int answerPipe[2];
    if (pipe2(answerPipe, O_CLOEXEC) != 0)
        return writeAll(kProgram, replyHeader(Outcome::Failed, 0));
    const pid_t copy = fork();
    if (copy == 0) {
        close(answerPipe[0]);
        readInThisCopy(request, answerPipe[1]);
    }
    close(answerPipe[1]);
    std::string answer;
    Outcome outcome = copy > 0 ? collect(answerPipe[0], deadline, answer) : Outcome::Failed;
    close(answerPipe[0]);
    if (copy > 0) {
        if (outcome != Outcome::Answered)
            kill(copy, SIGKILL);
        int status = 0;
        while (waitpid(copy, &status, 0) < 0 && errno == EINTR) {
        }
        const bool clean = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (outcome == Outcome::Answered && (!clean || answer.empty()))
            outcome = Outcome::Failed;
    }
    if (outcome != Outcome::Answered)
        answer.clear();
    return writeAll(kProgram, replyHeader(outcome, answer.size())) && writeAll(kProgram, answer);
}

} // namespace

int main() {
    signal(SIGPIPE, SIG_IGN);
    prepareReaders();
    while (const auto request = readRequest(kProgram)) {
        if (!serve(*request))
            break;
    }
    return 0;
}
