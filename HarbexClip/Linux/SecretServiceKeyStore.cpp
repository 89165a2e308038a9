#include "HarbexClip/Linux/SecretServiceKeyStore.hpp"

#include <libsecret/secret.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace harbex {

namespace {

struct ObjectUnref {
    void operator()(gpointer object) const {
        if (object) g_object_unref(object);
    }
};
template <class T>
using ObjectPtr = std::unique_ptr<T, ObjectUnref>;

struct ErrorFree {
    void operator()(GError* error) const { g_error_free(error); }
};
using ErrorPtr = std::unique_ptr<GError, ErrorFree>;

struct ValueUnref {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
using ValuePtr = std::unique_ptr<SecretValue, ValueUnref>;

struct TableUnref {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};
using TablePtr = std::unique_ptr<GHashTable, TableUnref>;

const SecretSchema* schema() {
    static const SecretSchema value = [] {
        SecretSchema made{};
        made.name = SecretServiceKeyStore::kSchemaName;
        made.flags = SECRET_SCHEMA_NONE;
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return &value;
}

// Cancels the calls of one operation once `timeout` has passed: an unlock prompt or a stuck
// service must not hold the caller for ever.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds timeout)
        : cancellable_(g_cancellable_new()), watcher_([this, timeout] {
              std::unique_lock guard(mutex_);
              if (!finished_.wait_for(guard, timeout, [this] { return done_; })) {
                  g_cancellable_cancel(cancellable_.get());
              }
          }) {}
    ~Deadline() {
        {
            std::lock_guard guard(mutex_);
            done_ = true;
        }
        finished_.notify_all();
        watcher_.join();
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

    GCancellable* cancellable() const { return cancellable_.get(); }

private:
    ObjectPtr<GCancellable> cancellable_;
    std::mutex mutex_;
    std::condition_variable finished_;
    bool done_ = false;
    std::thread watcher_;  // last, so it starts once everything it uses exists
};

bool isServiceMissing(const GError* error) {
    if (error->domain == G_DBUS_ERROR) {
        switch (error->code) {
            case G_DBUS_ERROR_SERVICE_UNKNOWN:
            case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
            case G_DBUS_ERROR_NO_SERVER:
            case G_DBUS_ERROR_DISCONNECTED:
            case G_DBUS_ERROR_SPAWN_EXEC_FAILED:
            case G_DBUS_ERROR_SPAWN_FAILED:
            case G_DBUS_ERROR_SPAWN_CHILD_EXITED:
            case G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND:
            case G_DBUS_ERROR_UNKNOWN_METHOD:
            case G_DBUS_ERROR_UNKNOWN_OBJECT:
            case G_DBUS_ERROR_UNKNOWN_INTERFACE: return true;
            default: return false;
        }
    }
    return error->domain == G_IO_ERROR && error->code == G_IO_ERROR_CLOSED;
}

// Locked, cancelled by the deadline, or a prompt the user dismissed all mean "not now"; a missing
// service means "no keyring"; anything else is a keyring we cannot use either.
KeychainStatus statusFor(const GError* error) {
    if (!error) return kKeychainInteractionNotAllowed;
    if (error->domain == G_IO_ERROR && error->code == G_IO_ERROR_CANCELLED) {
        return kKeychainInteractionNotAllowed;
    }
    if (error->domain == SECRET_ERROR && error->code == SECRET_ERROR_IS_LOCKED) {
        return kKeychainInteractionNotAllowed;
    }
    if (isServiceMissing(error)) return kKeychainNotAvailable;
    return kKeychainNotAvailable;
}

// One operation's connection and the items of ours it found.
class Session {
public:
    Session(const SecretServiceKeyStore::Options& options)
        : options_(options), deadline_(options.timeout) {}

    // Connects to the Secret Service without raising any prompt. Any failure to reach it (no
    // session bus, nobody owning the name) is "no keyring".
    std::expected<void, KeychainStatus> connect() {
        GError* raw = nullptr;
        service_.reset(
            secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, deadline_.cancellable(), &raw));
        ErrorPtr error(raw);
        if (service_) return {};
        if (g_cancellable_is_cancelled(deadline_.cancellable())) {
            return std::unexpected(kKeychainInteractionNotAllowed);
        }
        return std::unexpected(kKeychainNotAvailable);
    }

    // Every item of ours, locked ones included; never unlocks. With `loadSecrets`, the secrets
    // of unlocked items come along.
    std::expected<std::vector<ObjectPtr<SecretItem>>, KeychainStatus> search(bool loadSecrets) {
        TablePtr attributes(attributesTable());
        const auto flags = static_cast<SecretSearchFlags>(
            SECRET_SEARCH_ALL | (loadSecrets ? SECRET_SEARCH_LOAD_SECRETS : SECRET_SEARCH_NONE));
        GError* raw = nullptr;
        GList* found = secret_service_search_sync(service_.get(), schema(), attributes.get(), flags,
                                                  deadline_.cancellable(), &raw);
        ErrorPtr error(raw);
        if (error) return std::unexpected(statusFor(error.get()));
        std::vector<ObjectPtr<SecretItem>> items;
        for (GList* link = found; link; link = link->next) {
            items.emplace_back(static_cast<SecretItem*>(link->data));
        }
        g_list_free(found);
        return items;
    }

    std::expected<Bytes, KeychainStatus> secretOf(SecretItem* item) {
        ValuePtr value(secret_item_get_secret(item));
        if (!value) {
            GError* raw = nullptr;
            secret_item_load_secret_sync(item, deadline_.cancellable(), &raw);
            ErrorPtr error(raw);
            if (error) return std::unexpected(statusFor(error.get()));
            value.reset(secret_item_get_secret(item));
        }
        // Locked again between the search and the load.
        if (!value) return std::unexpected(kKeychainInteractionNotAllowed);
        gsize length = 0;
        const auto* data =
            reinterpret_cast<const std::uint8_t*>(secret_value_get(value.get(), &length));
        return Bytes(data, data + length);
    }

    std::expected<void, KeychainStatus> replaceSecret(SecretItem* item, SecretValue* value) {
        GError* raw = nullptr;
        secret_item_set_secret_sync(item, value, deadline_.cancellable(), &raw);
        ErrorPtr error(raw);
        if (error) return std::unexpected(statusFor(error.get()));
        return {};
    }

    std::expected<void, KeychainStatus> create(SecretValue* value) {
        GError* raw = nullptr;
        ObjectPtr<SecretCollection> collection(secret_collection_for_alias_sync(
            service_.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE,
            deadline_.cancellable(), &raw));
        ErrorPtr error(raw);
        if (error) return std::unexpected(statusFor(error.get()));
        // No default collection, or a locked one: making or unlocking it needs a prompt, which
        // is the keyring's own business, not ours.
        if (!collection || secret_collection_get_locked(collection.get())) {
            return std::unexpected(kKeychainInteractionNotAllowed);
        }
        TablePtr attributes(attributesTable());
        ObjectPtr<SecretItem> item(secret_item_create_sync(
            collection.get(), schema(), attributes.get(), SecretServiceKeyStore::kLabel, value,
            SECRET_ITEM_CREATE_NONE, deadline_.cancellable(), &raw));
        error.reset(raw);
        if (error || !item) return std::unexpected(statusFor(error.get()));
        return {};
    }

    std::expected<void, KeychainStatus> remove(SecretItem* item) {
        GError* raw = nullptr;
        secret_item_delete_sync(item, deadline_.cancellable(), &raw);
        ErrorPtr error(raw);
        if (error) return std::unexpected(statusFor(error.get()));
        return {};
    }

private:
    GHashTable* attributesTable() const {
        GHashTable* table = g_hash_table_new(g_str_hash, g_str_equal);
        g_hash_table_insert(table, const_cast<char*>("service"),
                            const_cast<char*>(options_.service.c_str()));
        g_hash_table_insert(table, const_cast<char*>("account"),
                            const_cast<char*>(options_.account.c_str()));
        return table;
    }

    const SecretServiceKeyStore::Options& options_;
    Deadline deadline_;
    ObjectPtr<SecretService> service_;
};

}  // namespace

std::expected<std::optional<Bytes>, KeychainStatus> SecretServiceKeyStore::read() {
    Session session(options_);
    if (auto connected = session.connect(); !connected) {
        return std::unexpected(connected.error());
    }
    auto items = session.search(true);
    if (!items) return std::unexpected(items.error());
    // Only an empty search means "nothing stored"; a locked item is there but closed.
    if (items->empty()) return std::nullopt;
    for (const auto& item : *items) {
        if (secret_item_get_locked(item.get())) continue;
        auto secret = session.secretOf(item.get());
        if (!secret) return std::unexpected(secret.error());
        return std::optional<Bytes>(std::move(*secret));
    }
    return std::unexpected(kKeychainInteractionNotAllowed);
}

std::expected<void, KeychainStatus> SecretServiceKeyStore::write(
    std::span<const std::uint8_t> bytes) {
    Session session(options_);
    if (auto connected = session.connect(); !connected) {
        return std::unexpected(connected.error());
    }
    auto items = session.search(false);
    if (!items) return std::unexpected(items.error());
    ValuePtr value(secret_value_new(reinterpret_cast<const gchar*>(bytes.data()),
                                    static_cast<gssize>(bytes.size()), kContentType));
    if (items->empty()) return session.create(value.get());
    for (const auto& item : *items) {
        if (secret_item_get_locked(item.get()))
            return std::unexpected(kKeychainInteractionNotAllowed);
    }
    for (const auto& item : *items) {
        if (auto replaced = session.replaceSecret(item.get(), value.get()); !replaced) {
            return replaced;
        }
    }
    return {};
}

std::expected<void, KeychainStatus> SecretServiceKeyStore::remove() {
    Session session(options_);
    if (auto connected = session.connect(); !connected) {
        return std::unexpected(connected.error());
    }
    auto items = session.search(false);
    if (!items) return std::unexpected(items.error());
    for (const auto& item : *items) {
        if (secret_item_get_locked(item.get()))
            return std::unexpected(kKeychainInteractionNotAllowed);
    }
    for (const auto& item : *items) {
        if (auto removed = session.remove(item.get()); !removed) return removed;
    }
    return {};
}

}  // namespace harbex
