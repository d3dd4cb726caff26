#pragma once

#include <functional>
#include <memory>
#include <vector>

namespace vespra {

/// Collects what is read inside a block: while one is open on the main thread, every `Observed` value that is read
/// remembers it, and tells it once, after the first of them has changed. Main thread only.
class ReadScope {
public:
    /// Told at most once. Opening ends with the returned object; the subscription ends with `listener`.
    struct Listener {
        std::function<void()> onChange;
        /// What has to last as long as the subscription.
        std::vector<std::shared_ptr<const void>> kept = {};
    };

    explicit ReadScope(const std::shared_ptr<Listener>& listener);
    ~ReadScope();
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

    /// Nothing outside any block.
    static std::shared_ptr<Listener> current();

private:
    std::shared_ptr<Listener> outer_;
};

/// Who has read one value since it last changed; held weakly, each once.
class Readers {
public:
    Readers() = default;
    /// A copied value starts without readers: they follow the original.
    Readers(const Readers&) { }
    Readers& operator=(const Readers&) { return *this; }

    void add(const std::shared_ptr<ReadScope::Listener>& listener);
    void tellAndForget();

private:
    std::vector<std::weak_ptr<ReadScope::Listener>> listeners_;
};

} // namespace vespra
