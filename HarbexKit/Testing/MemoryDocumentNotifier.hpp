#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "HarbexKit/DocumentNotifier.hpp"

namespace harbex {

// An in-process stand-in for the session bus. Each MemoryDocumentNotifier attached to the same
// bus behaves like one application: it hears the others' posts, never its own. Delivery is
// synchronous, inside `post`. Used by tests, and when no session bus can be reached. Thread: one.
class MemoryDocumentBus {
public:
    MemoryDocumentBus() = default;
    MemoryDocumentBus(const MemoryDocumentBus&) = delete;
    MemoryDocumentBus& operator=(const MemoryDocumentBus&) = delete;

    // Every post so far, in order, as (sender endpoint, name).
    struct Post {
        std::uint64_t sender;
        std::string name;
    };
    const std::vector<Post>& posts() const { return posts_; }

private:
    friend class MemoryDocumentNotifier;
    struct Listener {
        std::uint64_t endpoint;
        std::string name;
        std::function<void()> observer;
        bool active = true;
    };

    std::uint64_t nextEndpoint_ = 1;
    std::vector<Post> posts_;
    std::shared_ptr<std::vector<std::shared_ptr<Listener>>> listeners_ =
        std::make_shared<std::vector<std::shared_ptr<Listener>>>();
};

class MemoryDocumentNotifier final : public DocumentNotifier {
public:
    // `bus` must outlive this notifier and its subscriptions' observers.
    explicit MemoryDocumentNotifier(MemoryDocumentBus& bus);

    void post(std::string_view name) override;
    [[nodiscard]] Subscription subscribe(std::string name, std::function<void()> observer) override;

    // How many posts this endpoint made, and how many of others' it delivered.
    std::size_t postCount() const { return postCount_; }
    std::size_t deliveredCount() const { return *delivered_; }

private:
    MemoryDocumentBus& bus_;
    std::uint64_t endpoint_;
    std::size_t postCount_ = 0;
    // Shared with the observers' wrappers, which may outlive this object.
    std::shared_ptr<std::size_t> delivered_ = std::make_shared<std::size_t>(0);
};

}  // namespace harbex
