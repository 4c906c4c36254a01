// The service as who starts and stops it sees it. The build names the program's file, OCPSM_PROGRAM.
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/line_system.hpp"
#include "sysdb/temporary_directory.hpp"

namespace {

using ocpsm::SimulatedLineSystem;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
using Words = std::vector<std::string>;

std::string content(const std::filesystem::path &file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Waits, a minute at most.
bool becomes_true(const std::function<bool()> &condition) {
    for (int left = 6000; left > 0; --left) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

// A command of the program in the background, its streams in files.
class Process {
public:
    Process(const Words &arguments, std::filesystem::path output, const std::string &manager = {})
        : output_(std::move(output)), child_(fork()) {
        if (child_ == 0) {
            run(arguments, manager);
        }
    }
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    ~Process() {
        if (child_ > 0) {
            kill(child_, SIGKILL);
            waitpid(child_, nullptr, 0);
        }
    }

    pid_t number() const { return child_; }
    void send(int signal) const { kill(child_, signal); }
    std::string output() const { return content(output_); }
    std::string errors() const { return content(output_.string() + ".errors"); }
    bool prints(const std::string &text) const {
        return becomes_true([&] { return output().find(text) != std::string::npos; });
    }

    // The exit code; of one that a signal has ended, its negative number.
    int wait_for_end() {
        int status = 0;
        if (!becomes_true([&] { return waitpid(child_, &status, WNOHANG) == child_; })) {
            return -1000;
        }
        child_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    [[noreturn]] void run(const Words &arguments, const std::string &manager) const {
        std::vector<char *> words{const_cast<char *>(OCPSM_PROGRAM)}; // NOLINT(cppcoreguidelines-pro-type-const-cast)
        for (const std::string &word : arguments) {
            words.push_back(const_cast<char *>(word.c_str())); // NOLINT(cppcoreguidelines-pro-type-const-cast)
        }
        words.push_back(nullptr);
        // While the search for leaks stops all threads, those of gRPC may be about to end, which it does not survive.
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
        manager.empty() ? unsetenv("NOTIFY_SOCKET") : setenv("NOTIFY_SOCKET", manager.c_str(), 1);
        const auto into = [](int stream, const std::string &file) {
            dup2(open(file.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600), stream); // NOLINT
        };
        dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO); // NOLINT
        into(STDOUT_FILENO, output_);
        into(STDERR_FILENO, output_.string() + ".errors");
        execv(words.front(), words.data());
        _exit(127);
    }

    std::filesystem::path output_;
    pid_t child_;
};

// What a service tells the manager that has started it.
class Manager {
public:
    explicit Manager(const std::string &name) : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        struct sockaddr_un address {};
        address.sun_family = AF_UNIX;
        std::copy(name.begin(), name.end(), std::begin(address.sun_path));
        address.sun_path[0] = name.front() == '@' ? '\0' : '/';
        const auto size = static_cast<socklen_t>(offsetof(struct sockaddr_un, sun_path) + name.size());
        EXPECT_EQ(bind(socket_, reinterpret_cast<struct sockaddr *>(&address), size), 0); // NOLINT
    }
    Manager(const Manager &) = delete;
    Manager &operator=(const Manager &) = delete;
    ~Manager() { close(socket_); }

    // The next message; none within a minute: the empty text.
    std::string next() const {
        std::array<char, 100> bytes{};
        ssize_t size = -1;
        becomes_true([&] { return (size = recv(socket_, bytes.data(), bytes.size(), MSG_DONTWAIT)) >= 0; });
        return {bytes.data(), static_cast<std::size_t>(std::max(size, ssize_t{0}))};
    }

    bool has_none() const { return recv(socket_, nullptr, 0, MSG_DONTWAIT | MSG_PEEK) < 0; }

private:
    int socket_;
};

class Serve : public testing::Test {
protected:
    Words words(const Words &options = {}) const {
        Words all{"serve", "--state", state.string(), "--gnmi", "127.0.0.1:0"};
        all.insert(all.end(), options.begin(), options.end());
        return all;
    }
    std::filesystem::path file(const std::string &name) const { return directory.path / name; }
    std::uint64_t clock() const { return SimulatedLineSystem::open(state).view().clock; }
    bool clock_moves() const {
        return becomes_true([this, begin = clock()] { return clock() != begin; });
    }
    std::string made() const { return "made the example line system in " + state.string() + "\n"; }
    std::string serving(const std::string &rest) const {
        return "serving the line system in " + state.string() + ", " + rest + "\n";
    }

    const TemporaryDirectory directory;
    const std::filesystem::path state = directory.path / "system";
};

TEST_F(Serve, MakesTheExampleAndLetsItsTimePassUntilItIsStopped) {
    std::string before = made();
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const Manager manager(file("manager").string() + std::to_string(signal));
        Process service(words(), file("output"), file("manager").string() + std::to_string(signal));
        EXPECT_EQ(manager.next(), "READY=1");
        EXPECT_THAT(service.output(), testing::StartsWith(before + serving("its time passes")));
        EXPECT_THAT(service.output().substr((before + serving("its time passes")).size()),
                    testing::MatchesRegex("gNMI on 127.0.0.1:[0-9]+, plaintext: as in examples/clients/gnmi_client.py "
                                          "127.0.0.1:[0-9]+ get /aps/aps-modules\n"));
        EXPECT_TRUE(clock_moves());
        EXPECT_TRUE(manager.has_none());
        service.send(signal);
        EXPECT_EQ(service.wait_for_end(), 0);
        EXPECT_EQ(manager.next(), "STOPPING=1");
        EXPECT_EQ(service.errors(), "");
        before.clear();
    }
    Words names;
    for (const auto &entry : std::filesystem::directory_iterator(state)) {
        names.push_back(entry.path().filename());
    }
    EXPECT_THAT(names, UnorderedElementsAre("line-system.store", "clock.lock"));
    Process tick({"device", "tick", "100", "--state", state.string()}, file("tick"));
    EXPECT_EQ(tick.wait_for_end(), 0);
}

TEST_F(Serve, TellsAManagerWhoseSocketHasNoFile) {
    const std::string name = "@ocpsm-serve-test-" + std::to_string(getpid());
    const Manager manager(name);
    Process service(words({"--stopped"}), file("output"), name);
    EXPECT_EQ(manager.next(), "READY=1");
    service.send(SIGTERM);
    EXPECT_EQ(service.wait_for_end(), 0);
    EXPECT_EQ(manager.next(), "STOPPING=1");
}

TEST_F(Serve, DoesWithoutAManagerThatCannotBeReached) {
    for (const std::string &name :
         {std::string("@"), std::string("relative"), file("nobody").string(), std::string(200, '/')}) {
        Process service(words({"--stopped"}), file("output" + std::to_string(name.size())), name);
        EXPECT_TRUE(service.prints("serving"));
        service.send(SIGTERM);
        EXPECT_EQ(service.wait_for_end(), 0);
        EXPECT_EQ(service.errors(), "");
    }
}

TEST_F(Serve, LeavesTheTimeToOthersWhenItIsToldTo) {
    Process service(words({"--stopped"}), file("output"));
    ASSERT_TRUE(service.prints(made() + serving("its time is left to ocpsm device tick")));
    Process tick({"device", "tick", "700", "--state", state.string()}, file("tick"));
    EXPECT_EQ(tick.wait_for_end(), 0);
    EXPECT_EQ(clock(), 700U);
    service.send(SIGTERM);
    EXPECT_EQ(service.wait_for_end(), 0);
}

TEST_F(Serve, LeavesTheTimeToTheServiceThatHasIt) {
    Process first(words(), file("first"));
    ASSERT_TRUE(first.prints("serving"));
    Process second(words(), file("second"));
    ASSERT_TRUE(second.prints(serving("its time is moved by another process")));
    EXPECT_EQ(second.errors(), "ocpsm: warning: the time of the line system in " + state.string() +
                                   " is being moved already by process " + std::to_string(first.number()) +
                                   "; this service leaves it alone\n");
    first.send(SIGKILL);
    EXPECT_EQ(first.wait_for_end(), -SIGKILL);
    Process third(words({"--speed", "10"}), file("third"));
    EXPECT_TRUE(third.prints(serving("its time passes 10 times as fast")));
    EXPECT_TRUE(clock_moves());
    EXPECT_EQ(clock() % 100, 0U);
    for (Process *service : {&second, &third}) {
        service->send(SIGTERM);
        EXPECT_EQ(service->wait_for_end(), 0);
    }
}

// In steps of its own, whatever it has missed: never more of them than there was time for.
TEST_F(Serve, DoesNotMakeUpForWhatItHasMissed) {
    using Time = std::chrono::steady_clock;
    Process service(words({"--speed", "7"}), file("output"));
    ASSERT_TRUE(service.prints("serving"));
    ASSERT_TRUE(clock_moves());
    service.send(SIGSTOP);
    int status = 0;
    ASSERT_EQ(waitpid(service.number(), &status, WUNTRACED), service.number());
    const std::uint64_t missed_from = clock();
    std::this_thread::sleep_for(std::chrono::seconds(2));
    EXPECT_EQ(clock(), missed_from);
    const auto begin = Time::now();
    service.send(SIGCONT);
    ASSERT_TRUE(becomes_true([&] { return clock() >= missed_from + 15 * 700; }));
    const std::uint64_t steps = (clock() - missed_from) / 700;
    const auto most = std::chrono::duration_cast<std::chrono::milliseconds>(Time::now() - begin).count() / 100 + 2;
    EXPECT_EQ((clock() - missed_from) % 700, 0U);
    EXPECT_LE(steps, static_cast<std::uint64_t>(most));
}

TEST_F(Serve, IsRefusedWhereItCannotBe) {
    std::filesystem::create_directory(state);
    std::ofstream(state / "other") << "x";
    Process among_others(words(), file("output"));
    EXPECT_EQ(among_others.wait_for_end(), 2);
    EXPECT_EQ(among_others.errors(), "ocpsm: error: the directory " + state.string() +
                                         " holds other files; name one for the line system alone\n");
    EXPECT_EQ(among_others.output(), "");
    for (const auto &[options, error] :
         std::vector<std::pair<Words, std::string>>{{{"--speed", "0"}, "--speed: 0 is not within 1 to 1000"},
                                                    {{"--speed", "1001"}, "--speed: 1001 is not within 1 to 1000"},
                                                    {{"--speed", "2", "--stopped"}, "--speed excludes --stopped"}}) {
        Process service(words(options), file("output"));
        EXPECT_EQ(service.wait_for_end(), 2);
        EXPECT_EQ(service.errors(), "ocpsm: error: " + error + "; ocpsm serve --help tells the usage\n");
    }
}

} // namespace
