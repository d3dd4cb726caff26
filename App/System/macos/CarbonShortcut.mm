#include "App/System/macos/MacAdapters.h"
#include "App/System/macos/NotificationObserver.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainThread.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#import <AppKit/AppKit.h>
#import <Carbon/Carbon.h>

namespace vespra {

namespace {

    constexpr OSType signature = 'vspr';

    UInt32 modifiers(const KeyCombination& keys)
    {
        UInt32 all = 0;
        for (const auto& [isWanted, bit] :
            {std::pair{keys.control, controlKey}, {keys.alt, optionKey}, {keys.super, cmdKey}, {keys.shift, shiftKey}})
            all |= isWanted ? static_cast<UInt32>(bit) : 0;
        return all;
    }

    /// What the key types on its own; 0 for nothing, or more than one character.
    UniChar typed(const UCKeyboardLayout* layout, UInt16 code)
    {
        UInt32 deadKey = 0;
        UniCharCount length = 0;
        UniChar text[4]{};
        const OSStatus status = UCKeyTranslate(layout,
            code,
            kUCKeyActionDisplay,
            0,
            LMGetKbdType(),
            kUCKeyTranslateNoDeadKeysMask,
            &deadKey,
            std::size(text),
            &length,
            text);
        return status == noErr && length == 1 ? text[0] : 0;
    }

    /// The key by its place on an ANSI keyboard; absent for what is no letter or digit.
    std::optional<UInt32> ansiCode(char key)
    {
        constexpr std::string_view keys = "abcdefghijklmnopqrstuvwxyz0123456789";
        constexpr UInt32 codes[]{kVK_ANSI_A,
            kVK_ANSI_B,
            kVK_ANSI_C,
            kVK_ANSI_D,
            kVK_ANSI_E,
            kVK_ANSI_F,
            kVK_ANSI_G,
            kVK_ANSI_H,
            kVK_ANSI_I,
            kVK_ANSI_J,
            kVK_ANSI_K,
            kVK_ANSI_L,
            kVK_ANSI_M,
            kVK_ANSI_N,
            kVK_ANSI_O,
            kVK_ANSI_P,
            kVK_ANSI_Q,
            kVK_ANSI_R,
            kVK_ANSI_S,
            kVK_ANSI_T,
            kVK_ANSI_U,
            kVK_ANSI_V,
            kVK_ANSI_W,
            kVK_ANSI_X,
            kVK_ANSI_Y,
            kVK_ANSI_Z,
            kVK_ANSI_0,
            kVK_ANSI_1,
            kVK_ANSI_2,
            kVK_ANSI_3,
            kVK_ANSI_4,
            kVK_ANSI_5,
            kVK_ANSI_6,
            kVK_ANSI_7,
            kVK_ANSI_8,
            kVK_ANSI_9};
        static_assert(std::size(codes) == keys.size());
        const auto at = keys.find(key);
        return at == std::string_view::npos ? std::nullopt : std::optional{codes[at]};
    }

    /// The key that types `key` in the current layout; absent if none does. The keypad's digits do not count.
    std::optional<UInt32> typingCode(char key)
    {
        constexpr UInt16 codeCount = 128;
        const id source = CFBridgingRelease(TISCopyCurrentKeyboardLayoutInputSource());
        if (!source)
            return {};
        auto data = static_cast<CFDataRef>(
            TISGetInputSourceProperty((__bridge TISInputSourceRef)source, kTISPropertyUnicodeKeyLayoutData));
        if (!data)
            return {};
        const auto* layout = reinterpret_cast<const UCKeyboardLayout*>(CFDataGetBytePtr(data));
        for (UInt16 code = 0; code < codeCount; ++code)
            if ((code < kVK_ANSI_KeypadDecimal || code > kVK_ANSI_Keypad9)
                && typed(layout, code) == static_cast<UniChar>(key))
                return code;
        return {};
    }

    std::optional<UInt32> keyCode(char key)
    {
        const auto code = typingCode(key);
        return code ? code : ansiCode(key);
    }

    /// Hot keys of the system's own, which need no permission. Only an application that takes events from the window
    /// server hears of them, so there are none without an NSApplication.
    class CarbonShortcut final : public GlobalShortcut {
    public:
        explicit CarbonShortcut(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
            , layouts_{[NSDistributedNotificationCenter defaultCenter],
                  (__bridge NSString*)kTISNotifySelectedKeyboardInputSourceChanged,
                  [this] { layoutChanged(); }}
        {
            const EventTypeSpec released{kEventClassKeyboard, kEventHotKeyReleased};
            isListening_
                = InstallEventHandler(GetEventDispatcherTarget(), handle, 1, &released, this, &handler_) == noErr;
        }
        ~CarbonShortcut() override
        {
            for (auto& [name, shortcut] : shortcuts_)
                giveBack(shortcut);
            if (isListening_)
                RemoveEventHandler(handler_);
        }

        void set(Request request) override
        {
            mainThread::check();
            clear(request.name);
            const auto name = request.name;
            auto& shortcut = shortcuts_[name]
                = {.id = ++lastID_, .code = {}, .key = nullptr, .request = std::move(request)};
            const auto outcome = take(shortcut);
            notify(shortcut.request.onOutcome, outcome);
        }

        void clear(std::string_view name) override
        {
            const auto found = shortcuts_.find(name);
            if (found == shortcuts_.end())
                return;
            giveBack(found->second);
            shortcuts_.erase(found);
        }

    private:
        struct Shortcut {
            UInt32 id;
            /// Absent where no key is meant.
            std::optional<UInt32> code;
            /// Null while the keys are not taken.
            EventHotKeyRef key;
            Request request;
        };

        Outcome take(Shortcut& shortcut)
        {
            shortcut.code = keyCode(shortcut.request.keys.key);
            if (!shortcut.code || !isListening_ || NSApp == nil)
                return std::unexpected{Failure::unavailable};
            const OSStatus status = RegisterEventHotKey(*shortcut.code,
                modifiers(shortcut.request.keys),
                {signature, shortcut.id},
                GetEventDispatcherTarget(),
                kEventHotKeyExclusive,
                &shortcut.key);
            if (status == noErr)
                return {};
            shortcut.key = nullptr;
            return std::unexpected{status == eventHotKeyExistsErr ? Failure::conflict : Failure::unavailable};
        }

        static void giveBack(Shortcut& shortcut)
        {
            if (EventHotKeyRef key = std::exchange(shortcut.key, nullptr))
                UnregisterEventHotKey(key);
        }

        /// Letters may lie elsewhere now. Other input sources of the same layout change nothing.
        void layoutChanged()
        {
            std::vector<std::pair<std::function<void(const Outcome&)>, Outcome>> outcomes;
            for (auto& [name, shortcut] : shortcuts_)
                if (shortcut.code != keyCode(shortcut.request.keys.key)) {
                    giveBack(shortcut);
                    outcomes.emplace_back(shortcut.request.onOutcome, take(shortcut));
                }
            for (const auto& [onOutcome, outcome] : outcomes)
                notify(onOutcome, outcome);
        }

        static OSStatus handle(EventHandlerCallRef, EventRef event, void* data)
        {
            EventHotKeyID key{};
            const OSStatus status = GetEventParameter(
                event, kEventParamDirectObject, typeEventHotKeyID, nullptr, sizeof key, nullptr, &key);
            if (status != noErr || key.signature != signature)
                return eventNotHandledErr;
            auto& self = *static_cast<CarbonShortcut*>(data);
            for (const auto& [name, shortcut] : self.shortcuts_)
                if (shortcut.id == key.id)
                    self.mainLoop_.post(shortcut.request.onKeyUp);
            return noErr;
        }

        MainLoop& mainLoop_;
        EventHandlerRef handler_ = nullptr;
        bool isListening_ = false;
        UInt32 lastID_ = 0;
        std::map<std::string, Shortcut, std::less<>> shortcuts_;
        NotificationObserver layouts_;
    };

} // namespace

std::unique_ptr<GlobalShortcut> makeCarbonShortcut(MainLoop& mainLoop)
{
    return std::make_unique<CarbonShortcut>(mainLoop);
}

} // namespace vespra
