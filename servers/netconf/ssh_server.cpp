#include "servers/netconf/ssh_server.hpp"

#include <netdb.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <thread>

#include "framework/error.hpp"
#include "servers/netconf/process_handle.hpp"

namespace ocpsm::netconf {

namespace {

constexpr char server_program[] = "/usr/sbin/sshd";
constexpr char guard_program[] = "/usr/bin/setpriv";
constexpr char key_program[] = "/usr/bin/ssh-keygen";
constexpr char key_types[][8] = {"ecdsa", "ed25519"};
// Where root's server has its unprivileged part; who boots the system makes it, but not everybody boots one.
constexpr char privilege_separation_directory[] = "/run/sshd";
constexpr std::chrono::seconds longest_start{10};
constexpr std::chrono::seconds longest_end{5};

[[noreturn]] void refuse(const std::string &message, const std::string &advice = {}) {
    throw Error(Error::Source::input, "operation-failed", "", message, advice);
}

// ---- its configuration ----

void require_plain(const std::string &text) {
    if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == '"' || c == 0x7f; })) {
        refuse("the name " + text + " cannot stand in the configuration of an SSH server",
               "use one without quotes and control characters");
    }
}

std::string in_double_quotes(const std::filesystem::path &name) {
    require_plain(name.string());
    return "\"" + name.string() + "\"";
}

// Where a percent sign begins something else.
std::string without_tokens(std::string text) {
    for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 2)) {
        text.insert(at, 1, '%');
    }
    return text;
}

std::string as_shell_word(const std::string &text) {
    require_plain(text);
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return word + "'";
}

std::string command_line(const std::vector<std::string> &words) {
    std::string line;
    for (const std::string &word : words) {
        line += " " + as_shell_word(word);
    }
    return line;
}

// ---- processes ----

// What a program is started with: none of the signals is held back that we hold back.
class StartAttributes {
public:
    StartAttributes() {
        sigset_t none{};
        sigemptyset(&none);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    }
    StartAttributes(const StartAttributes &) = delete;
    StartAttributes &operator=(const StartAttributes &) = delete;
    ~StartAttributes() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t *get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

// Runs a program with our environment; its messages are ours.
pid_t start(std::vector<std::string> words) {
    std::vector<char *> arguments;
    for (std::string &word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const StartAttributes attributes;
    pid_t process = 0;
    if (posix_spawn(&process, arguments.front(), nullptr, attributes.get(), arguments.data(), environ) != 0) {
        refuse("cannot start " + words.front(), "install the package openssh-server");
    }
    return process;
}

void run(const std::vector<std::string> &words) {
    int status = 0;
    if (waitpid(start(words), &status, 0) < 0 || status != 0) {
        refuse(words.front() + " has failed");
    }
}

// The process that has started one; nothing where that has ended.
std::optional<pid_t> parent_of(const std::string &process) {
    std::ifstream file("/proc/" + process + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::size_t behind = text.rfind(") "); // the name of the program, which may be anything, and the state
    pid_t parent = 0;
    if (behind == std::string::npos ||
        std::from_chars(text.data() + behind + 4, text.data() + text.size(), parent).ec != std::errc()) {
        return std::nullopt;
    }
    return parent;
}

// All that a process has started, and what those have.
std::vector<pid_t> descendants_of(pid_t process) {
    std::multimap<pid_t, pid_t> children;
    std::error_code failure;
    for (std::filesystem::directory_iterator entry("/proc", failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const std::string name = entry->path().filename().string();
        pid_t number = 0;
        if (std::from_chars(name.data(), name.data() + name.size(), number).ec == std::errc()) {
            if (const auto parent = parent_of(name)) {
                children.emplace(*parent, number);
            }
        }
    }
    std::vector<pid_t> found{process};
    for (std::size_t at = 0; at < found.size(); ++at) {
        const auto [first, last] = children.equal_range(found[at]);
        std::transform(first, last, std::back_inserter(found), [](const auto &child) { return child.second; });
    }
    found.erase(found.begin());
    return found;
}

// ---- where it listens ----

struct FreeAddress {
    void operator()(addrinfo *address) const noexcept { freeaddrinfo(address); }
};
using Address = std::unique_ptr<addrinfo, FreeAddress>;

Address address_of(const SshOptions &options) {
    addrinfo wanted{};
    wanted.ai_flags = AI_NUMERICHOST;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(options.address.c_str(), std::to_string(options.port).c_str(), &wanted, &found) != 0) {
        refuse(options.address + " is no address", "write 127.0.0.1 or ::1");
    }
    return Address(found);
}

bool answers(const addrinfo &address) {
    const int file = socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (file < 0) {
        return false;
    }
    const bool connected = connect(file, address.ai_addr, address.ai_addrlen) == 0;
    close(file);
    return connected;
}

void prepare(const SshOptions &options) {
    std::error_code failure;
    if (!std::filesystem::exists(server_program, failure)) {
        refuse("there is no " + std::string(server_program), "install the package openssh-server");
    }
    std::filesystem::create_directories(options.directory, failure);
    std::filesystem::permissions(options.directory, std::filesystem::perms::owner_all, failure);
    for (const char *type : key_types) {
        const std::filesystem::path key = options.directory / ("host_" + std::string(type));
        if (!std::filesystem::exists(key)) {
            run({key_program, "-q", "-t", type, "-N", "", "-C", "", "-f", key.string()});
        }
    }
    std::ofstream file(options.directory / "sshd_config", std::ios::trunc);
    file << ssh_configuration(options);
    if (!file.flush()) {
        refuse("cannot write " + (options.directory / "sshd_config").string(), "the directory must be writable");
    }
    if (geteuid() == 0) {
        std::filesystem::create_directories(privilege_separation_directory, failure);
    }
}

} // namespace

// The shell that runs the session has come from nobody's terminal: at this depth it reads no file of its user's.
std::string ssh_configuration(const SshOptions &options) {
    constexpr char subsystem[] = "netconf-subsystem";
    std::string text = "AddressFamily any\nListenAddress " + options.address + "\nPort " +
                       std::to_string(options.port) + "\nPidFile none\nLogLevel FATAL\n";
    for (const char *type : key_types) {
        text += "HostKey " +
                in_double_quotes(std::filesystem::absolute(options.directory / ("host_" + std::string(type)))) + "\n";
    }
    return text + "AuthenticationMethods publickey\nAuthorizedKeysFile " +
           without_tokens(in_double_quotes(std::filesystem::absolute(options.authorized_keys))) +
           "\nStrictModes no\nPasswordAuthentication no\nKbdInteractiveAuthentication no\nUsePAM no\n"
           "PermitRootLogin prohibit-password\nDisableForwarding yes\nPermitTTY no\nPermitUserRC no\n"
           "PermitUserEnvironment no\nUseDNS no\nSetEnv SHLVL=2\nSubsystem netconf " +
           subsystem + "\nForceCommand [ \"$SSH_ORIGINAL_COMMAND\" = " + subsystem + " ] && exec" +
           command_line(options.session) + "; exit 1\n";
}

SshServer::SshServer(const SshOptions &options) {
    const Address address = address_of(options);
    if (answers(*address)) {
        refuse("something listens on port " + std::to_string(options.port) + " of " + options.address + " already",
               "name another port");
    }
    prepare(options);
    // It goes when we go, however that comes.
    process_ = start({guard_program, "--pdeathsig", "KILL", server_program, "-D", "-e", "-f",
                      std::filesystem::absolute(options.directory / "sshd_config").string()});
    const auto until = std::chrono::steady_clock::now() + longest_start;
    while (!answers(*address)) {
        if (waitpid(process_, nullptr, WNOHANG) != 0 || std::chrono::steady_clock::now() > until) {
            kill(process_, SIGKILL);
            refuse("the SSH server does not start", "its own message stands above");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

// Stopped, it starts no session while the others are looked for.
SshServer::~SshServer() {
    kill(process_, SIGSTOP);
    std::vector<ProcessHandle> sessions;
    for (const pid_t session : descendants_of(process_)) {
        sessions.emplace_back(session);
    }
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    for (const ProcessHandle &session : sessions) {
        session.send(SIGTERM);
    }
    for (const ProcessHandle &session : sessions) {
        if (!session.wait(longest_end)) {
            session.send(SIGKILL);
        }
    }
}

} // namespace ocpsm::netconf
