#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace harbex {

// Ends a subscription when destroyed (or when `cancel` is called). Move-only.
class Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, {})) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            cancel_ = std::exchange(other.cancel_, {});
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { cancel(); }

    void cancel() {
        if (auto cancel = std::exchange(cancel_, {})) cancel();
    }

private:
    std::function<void()> cancel_;
};

// A published value. Observers are called on the owner's thread after every `set`; one may
// subscribe or cancel (itself or others) from inside a callback. A subscription may outlive the
// observable: cancelling it then does nothing. Thread: the owner's (main) thread only.
template <class T>
class Observable {
public:
    explicit Observable(T initial = T{}) : value_(std::move(initial)) {}
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    const T& get() const { return value_; }
    const T& operator*() const { return value_; }
    const T* operator->() const { return &value_; }

    void set(T value) {
        value_ = std::move(value);
        notify();
    }
    // Publishes only when the value differs, for observers that redraw on every change.
    void setIfChanged(T value) {
        if (value == value_) return;
        set(std::move(value));
    }
    // Changes the value in place and publishes it: for large values of which little changes,
    // where building a whole new value would cost more than the change.
    template <class Change>
    void modify(Change&& change) {
        std::forward<Change>(change)(value_);
        notify();
    }

    [[nodiscard]] Subscription subscribe(std::function<void(const T&)> observer) {
        auto entry = std::make_shared<Entry>(Entry{std::move(observer), true});
        registry_->push_back(entry);
        std::weak_ptr<std::vector<std::shared_ptr<Entry>>> weakRegistry = registry_;
        std::weak_ptr<Entry> weakEntry = entry;
        return Subscription([weakRegistry, weakEntry] {
            auto entry = weakEntry.lock();
            if (!entry) return;
            entry->active = false;
            if (auto registry = weakRegistry.lock()) {
                std::erase(*registry, entry);
            }
        });
    }

    std::size_t observerCount() const { return registry_->size(); }

private:
    struct Entry {
        std::function<void(const T&)> observer;
        bool active;
    };

    void notify() {
        // A snapshot, so observers may subscribe or cancel while being told.
        const auto snapshot = *registry_;
        for (const auto& entry : snapshot) {
            if (entry->active) entry->observer(value_);
        }
    }

    T value_;
    std::shared_ptr<std::vector<std::shared_ptr<Entry>>> registry_ =
        std::make_shared<std::vector<std::shared_ptr<Entry>>>();
};

}  // namespace harbex
