#include "HarbexKit/Testing/MemoryDocumentNotifier.hpp"

#include <algorithm>

namespace harbex {

MemoryDocumentNotifier::MemoryDocumentNotifier(MemoryDocumentBus& bus)
    : bus_(bus), endpoint_(bus.nextEndpoint_++) {}

void MemoryDocumentNotifier::post(std::string_view name) {
    ++postCount_;
    bus_.posts_.push_back({endpoint_, std::string(name)});
    // A snapshot, so a listener may subscribe or cancel while being told.
    const auto snapshot = *bus_.listeners_;
    for (const auto& listener : snapshot) {
        if (listener->active && listener->endpoint != endpoint_ && listener->name == name) {
            listener->observer();
        }
    }
}

Subscription MemoryDocumentNotifier::subscribe(std::string name, std::function<void()> observer) {
    auto delivered = delivered_;
    auto listener = std::make_shared<MemoryDocumentBus::Listener>(MemoryDocumentBus::Listener{
        endpoint_, std::move(name), [delivered, observer = std::move(observer)] {
            ++*delivered;
            observer();
        }});
    bus_.listeners_->push_back(listener);
    std::weak_ptr<std::vector<std::shared_ptr<MemoryDocumentBus::Listener>>> weakListeners =
        bus_.listeners_;
    std::weak_ptr<MemoryDocumentBus::Listener> weakListener = listener;
    return Subscription([weakListeners, weakListener] {
        auto listener = weakListener.lock();
        if (!listener) return;
        listener->active = false;
        if (auto listeners = weakListeners.lock()) std::erase(*listeners, listener);
    });
}

}  // namespace harbex
