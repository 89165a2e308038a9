#include "tests/Linux/Keyring/PrivateKeyring.hpp"

#include <fcntl.h>
#include <gio/gio.h>
#include <libsecret/secret.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <thread>

extern char** environ;

namespace harbex::testing {

namespace fs = std::filesystem;

namespace {

constexpr const char* kBusConfig = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (auto& text : strings) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> environment;
    for (char** entry = environ; *entry; ++entry) environment.emplace_back(*entry);
    return environment;
}

// Spawns `argv` with its standard input and output on pipes; the caller owns both ends.
pid_t spawnWithPipes(std::vector<std::string> argv, std::vector<std::string> environment,
                     int& input, int& output) {
    int in[2], out[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    auto args = pointersTo(argv);
    auto env = pointersTo(environment);
    pid_t pid = -1;
    if (::posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), env.data()) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    input = in[1];
    output = out[0];
    return pid;
}

std::string readLine(int fd) {
    std::string line;
    char byte = 0;
    while (::read(fd, &byte, 1) == 1 && byte != '\n') line.push_back(byte);
    return line;
}

void stopProcess(pid_t& pid) {
    if (pid <= 0) return;
    ::kill(pid, SIGCONT);
    ::kill(pid, SIGTERM);
    ::waitpid(pid, nullptr, 0);
    pid = -1;
}

GVariant* callBus(GDBusConnection* bus, const char* destination, const char* path,
                  const char* interface, const char* method, GVariant* arguments) {
    return g_dbus_connection_call_sync(bus, destination, path, interface, method, arguments,
                                       nullptr, G_DBUS_CALL_FLAGS_NONE, 2000, nullptr, nullptr);
}

// The default collection's object path once the keyring has one, else an empty string.
std::string defaultCollection(GDBusConnection* bus) {
    GVariant* reply =
        callBus(bus, "org.freedesktop.secrets", "/org/freedesktop/secrets",
                "org.freedesktop.Secret.Service", "ReadAlias", g_variant_new("(s)", "default"));
    if (!reply) return {};
    const gchar* path = nullptr;
    g_variant_get(reply, "(&o)", &path);
    std::string result = path && std::string(path) != "/" ? path : "";
    g_variant_unref(reply);
    return result;
}

std::optional<bool> collectionLocked(GDBusConnection* bus, const std::string& collection) {
    GVariant* reply = callBus(bus, "org.freedesktop.secrets", collection.c_str(),
                              "org.freedesktop.DBus.Properties", "Get",
                              g_variant_new("(ss)", "org.freedesktop.Secret.Collection", "Locked"));
    if (!reply) return std::nullopt;
    GVariant* boxed = nullptr;
    g_variant_get(reply, "(v)", &boxed);
    const bool locked = g_variant_get_boolean(boxed);
    g_variant_unref(boxed);
    g_variant_unref(reply);
    return locked;
}

GDBusConnection* connectTo(const char* address) {
    return g_dbus_connection_new_for_address_sync(
        address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
}

// Waits until the default collection is there and its lock state is `locked`.
bool waitForCollection(bool locked) {
    GDBusConnection* bus = connectTo(std::getenv("DBUS_SESSION_BUS_ADDRESS"));
    if (!bus) return false;
    bool reached = false;
    for (int attempt = 0; attempt < 200 && !reached; ++attempt) {
        const std::string collection = defaultCollection(bus);
        reached = !collection.empty() && collectionLocked(bus, collection) == locked;
        if (!reached) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    g_object_unref(bus);
    return reached;
}

}  // namespace

std::string PrivateKeyring::startBus(pid_t& pid) {
    const fs::path config = home_ / "bus.conf";
    if (!fs::exists(config)) std::ofstream(config) << kBusConfig;
    int input = -1, output = -1;
    pid = spawnWithPipes(
        {"dbus-daemon", "--config-file=" + config.string(), "--nofork", "--print-address=1"},
        currentEnvironment(), input, output);
    ::close(input);
    if (pid <= 0) return {};
    const std::string address = readLine(output);
    ::close(output);
    return address;
}

std::string PrivateKeyring::start() {
    std::string pattern = (fs::temp_directory_path() / "harbex-keyring-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) return "mkdtemp failed";
    home_ = pattern;
    for (const char* name : {"run", "data", "config", "cache"}) {
        fs::create_directory(home_ / name);
        fs::permissions(home_ / name, fs::perms::owner_all);
    }
    ::setenv("HOME", home_.c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", (home_ / "run").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (home_ / "data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home_ / "config").c_str(), 1);
    ::setenv("XDG_CACHE_HOME", (home_ / "cache").c_str(), 1);
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    ::unsetenv("GNOME_KEYRING_CONTROL");

    const std::string address = startBus(busPid_);
    if (address.empty()) return "dbus-daemon did not start";
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);

    int input = -1, output = -1;
    keyringPid_ =
        spawnWithPipes({"gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"},
                       currentEnvironment(), input, output);
    if (keyringPid_ <= 0) return "gnome-keyring-daemon did not start";
    const std::string password = kKeyringPassword;
    if (::write(input, password.data(), password.size()) < 0) return "could not send password";
    ::close(input);
    ::close(output);
    if (!waitForCollection(false)) return "the keyring never offered an unlocked collection";
    return {};
}

void PrivateKeyring::stop() {
    stopProcess(keyringPid_);
    stopProcess(emptyBusPid_);
    stopProcess(busPid_);
    std::error_code ignored;
    if (!home_.empty()) fs::remove_all(home_, ignored);
}

std::string PrivateKeyring::lock() {
    GError* error = nullptr;
    SecretService* service = secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, &error);
    if (!service) return error ? error->message : "no service";
    SecretCollection* collection = secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, &error);
    if (!collection) {
        g_object_unref(service);
        return "no default collection";
    }
    GList objects{collection, nullptr, nullptr};
    secret_service_lock_sync(service, &objects, nullptr, nullptr, &error);
    g_object_unref(collection);
    g_object_unref(service);
    if (error) {
        std::string message = error->message;
        g_error_free(error);
        return message;
    }
    return waitForCollection(true) ? "" : "the collection did not lock";
}

// gnome-keyring's own unlock-with-password call (what its password dialogs use), with the
// password sent in a "plain" session: no prompt, no display.
std::string PrivateKeyring::unlock() {
    GDBusConnection* bus = connectTo(std::getenv("DBUS_SESSION_BUS_ADDRESS"));
    if (!bus) return "no bus";
    std::string failure;
    GVariant* opened = callBus(bus, "org.freedesktop.secrets", "/org/freedesktop/secrets",
                               "org.freedesktop.Secret.Service", "OpenSession",
                               g_variant_new("(sv)", "plain", g_variant_new_string("")));
    const std::string collection = defaultCollection(bus);
    if (!opened || collection.empty()) {
        failure = "no session or no default collection";
    } else {
        GVariant* ignored = nullptr;
        const gchar* session = nullptr;
        g_variant_get(opened, "(v&o)", &ignored, &session);
        const std::string password = kKeyringPassword;
        GVariant* secret = g_variant_new(
            "(o@ay@ays)", session, g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, "", 0, 1),
            g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, password.data(), password.size(), 1),
            "text/plain");
        GVariant* reply = callBus(bus, "org.freedesktop.secrets", "/org/freedesktop/secrets",
                                  "org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface",
                                  "UnlockWithMasterPassword",
                                  g_variant_new("(o@(oayays))", collection.c_str(), secret));
        if (!reply) failure = "UnlockWithMasterPassword failed";
        if (reply) g_variant_unref(reply);
        g_variant_unref(ignored);
    }
    if (opened) g_variant_unref(opened);
    g_object_unref(bus);
    if (!failure.empty()) return failure;
    return waitForCollection(false) ? "" : "the collection did not unlock";
}

void PrivateKeyring::pauseDaemon() { ::kill(keyringPid_, SIGSTOP); }
void PrivateKeyring::resumeDaemon() { ::kill(keyringPid_, SIGCONT); }

std::string PrivateKeyring::startEmptyBus() { return startBus(emptyBusPid_); }

std::vector<std::string> PrivateKeyring::environmentWith(const std::string& name,
                                                         const std::string& value) {
    std::vector<std::string> environment;
    for (const auto& entry : currentEnvironment()) {
        if (!entry.starts_with(name + "=")) environment.push_back(entry);
    }
    environment.push_back(name + "=" + value);
    return environment;
}

ProcessResult PrivateKeyring::run(const std::vector<std::string>& argv,
                                  const std::vector<std::string>& environment,
                                  const std::string& input) {
    int in = -1, out = -1;
    const pid_t pid = spawnWithPipes(argv, environment, in, out);
    if (pid <= 0) return {};
    if (!input.empty() && ::write(in, input.data(), input.size()) < 0) {
        // The child reads nothing; its exit code tells.
    }
    ::close(in);
    ProcessResult result;
    char buffer[1024];
    ssize_t n;
    while ((n = ::read(out, buffer, sizeof buffer)) > 0) {
        result.output.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(out);
    int status = 0;
    ::waitpid(pid, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

}  // namespace harbex::testing
