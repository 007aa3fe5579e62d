#include "runner.hpp"

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace clitest {
namespace {

pid_t spawn(const std::vector<std::string> &args, int &in, int &out, int *err) {
    int pin[2], pout[2], perr[2];
    if (pipe(pin) || pipe(pout) || pipe(perr)) return -1;
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    posix_spawn_file_actions_adddup2(&fa, pin[0], 0);
    posix_spawn_file_actions_adddup2(&fa, pout[1], 1);
    posix_spawn_file_actions_adddup2(&fa, perr[1], 2);
    for (int fd : {pin[0], pin[1], pout[0], pout[1], perr[0], perr[1]})
        posix_spawn_file_actions_addclose(&fa, fd);
    std::vector<std::string> all{ZVFMT_PATH};
    all.insert(all.end(), args.begin(), args.end());
    std::vector<char *> argv;
    for (auto &a : all) argv.push_back(a.data());
    argv.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawn(&pid, ZVFMT_PATH, &fa, nullptr, argv.data(), environ) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&fa);
    close(pin[0]);
    close(pout[1]);
    close(perr[1]);
    in = pin[1];
    out = pout[0];
    if (err) *err = perr[0];
    else close(perr[0]);
    return pid;
}

int waitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
    return -1;
}

} // namespace

Run run(const std::vector<std::string> &args, const std::string &input) {
    std::signal(SIGPIPE, SIG_IGN);
    Run r;
    int in = -1, out = -1, err = -1;
    const pid_t pid = spawn(args, in, out, &err);
    if (pid < 0) return r;
    fcntl(in, F_SETFL, O_NONBLOCK);
    size_t written = 0;
    if (input.empty()) {
        close(in);
        in = -1;
    }
    bool outOpen = true, errOpen = true;
    char buf[65536];
    while (outOpen || errOpen) {
        pollfd fds[3];
        int n = 0;
        if (outOpen) fds[n++] = {out, POLLIN, 0};
        if (errOpen) fds[n++] = {err, POLLIN, 0};
        if (in >= 0) fds[n++] = {in, POLLOUT, 0};
        if (poll(fds, static_cast<nfds_t>(n), 60000) <= 0) break; // a hung child: give up
        for (int i = 0; i < n; ++i) {
            if (!fds[i].revents) continue;
            if (fds[i].fd == in) {
                const ssize_t w = write(in, input.data() + written, input.size() - written);
                if (w > 0) written += static_cast<size_t>(w);
                if (w < 0 && errno != EAGAIN) written = input.size();
                if (written == input.size()) {
                    close(in);
                    in = -1;
                }
                continue;
            }
            const ssize_t got = read(fds[i].fd, buf, sizeof buf);
            if (got <= 0) {
                if (fds[i].fd == out) outOpen = false;
                else errOpen = false;
                continue;
            }
            (fds[i].fd == out ? r.out : r.err).append(buf, static_cast<size_t>(got));
        }
    }
    if (in >= 0) close(in);
    close(out);
    close(err);
    if (outOpen || errOpen) kill(pid, SIGKILL);
    r.code = waitFor(pid);
    return r;
}

Coprocess::Coprocess(const std::vector<std::string> &extra) {
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::string> args{"--jsonl"};
    args.insert(args.end(), extra.begin(), extra.end());
    pid_ = spawn(args, in_, out_, &err_);
}

Coprocess::~Coprocess() {
    if (pid_ > 0) finish();
}

void Coprocess::send(const std::string &bytes) {
    size_t done = 0;
    while (in_ >= 0 && done < bytes.size()) {
        const ssize_t w = write(in_, bytes.data() + done, bytes.size() - done);
        if (w <= 0) {
            if (errno == EINTR) continue;
            break;
        }
        done += static_cast<size_t>(w);
    }
}

std::string Coprocess::readLine() {
    for (;;) {
        const size_t nl = buffer_.find('\n');
        if (nl != std::string::npos) {
            std::string line = buffer_.substr(0, nl);
            buffer_.erase(0, nl + 1);
            return line;
        }
        pollfd fd{out_, POLLIN, 0};
        if (out_ < 0 || poll(&fd, 1, 60000) <= 0) return "<no answer>";
        char buf[65536];
        const ssize_t got = read(out_, buf, sizeof buf);
        if (got <= 0) return "<no answer>";
        buffer_.append(buf, static_cast<size_t>(got));
    }
}

std::string Coprocess::ask(const std::string &line) {
    send(line + "\n");
    return readLine();
}

int Coprocess::finish() {
    if (in_ >= 0) close(in_);
    in_ = -1;
    if (out_ >= 0) close(out_);
    out_ = -1;
    if (err_ >= 0) close(err_);
    err_ = -1;
    const int code = pid_ > 0 ? waitFor(pid_) : -1;
    pid_ = -1;
    return code;
}

} // namespace clitest
