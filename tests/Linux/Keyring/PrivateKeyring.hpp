#pragma once

// A private session bus with gnome-keyring's Secret Service on it, unlocked, in a throw-away
// home: what the keyring tests talk to instead of the user's own keyring.

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace harbex::testing {

struct ProcessResult {
    int exitCode = -1;
    std::string output;
};

class PrivateKeyring {
public:
    // Starts the bus and the keyring and points this process's environment at them. Returns an
    // empty string on success, else what went wrong.
    std::string start();
    void stop();

    // Locks the default collection, as a screen lock or the user would.
    std::string lock();
    // Unlocks it again with the password, through the running daemon.
    std::string unlock();
    // Stops and resumes the keyring daemon, for a service that does not answer.
    void pauseDaemon();
    void resumeDaemon();

    // Starts a second bus with nothing on it and returns its address.
    std::string startEmptyBus();

    // The environment with `name` set to `value`, for a child process.
    static std::vector<std::string> environmentWith(const std::string& name,
                                                    const std::string& value);
    // Runs `program` with `environment`, giving it `input` on its standard input.
    static ProcessResult run(const std::vector<std::string>& argv,
                             const std::vector<std::string>& environment,
                             const std::string& input = {});

private:
    std::string startBus(pid_t& pid);

    std::filesystem::path home_;
    pid_t busPid_ = -1;
    pid_t emptyBusPid_ = -1;
    pid_t keyringPid_ = -1;
};

inline constexpr const char* kKeyringPassword = "harbex-test-password";

}  // namespace harbex::testing
