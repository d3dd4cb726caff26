#include "App/System/macos/MacAdapters.h"
#include "Core/Scheduling/MainThread.h"

#include <map>
#include <optional>
#include <string>

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

    /// The key that types `key` in the current layout; absent if none does.
    std::optional<UInt32> keyCode(char key)
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
            if (typed(layout, code) == static_cast<UniChar>(key))
                return code;
        return {};
    }

    /// Hot keys of the system's own, which need no permission. Only an application that takes events from the window
    /// server hears of them, so there are none without an NSApplication.
    class CarbonShortcut final : public GlobalShortcut {
    public:
        explicit CarbonShortcut(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
        {
            const EventTypeSpec released{kEventClassKeyboard, kEventHotKeyReleased};
            isListening_
                = InstallEventHandler(GetEventDispatcherTarget(), handle, 1, &released, this, &handler_) == noErr;
        }
        ~CarbonShortcut() override
        {
            for (const auto& [name, shortcut] : shortcuts_)
                UnregisterEventHotKey(shortcut.key);
            if (isListening_)
                RemoveEventHandler(handler_);
        }

        std::expected<void, Failure> set(
            std::string_view name, const KeyCombination& keys, std::function<void()> onKeyUp) override
        {
            mainThread::check();
            clear(name);
            auto code = keyCode(keys.key);
            if (!code && keys.key == 'w')
                code = kVK_ANSI_W;
            if (!code || !isListening_ || NSApp == nil)
                return std::unexpected{Failure::unavailable};
            Shortcut shortcut{.id = ++lastID_, .key = nullptr, .onKeyUp = std::move(onKeyUp)};
            const OSStatus status = RegisterEventHotKey(*code,
                modifiers(keys),
                {signature, shortcut.id},
                GetEventDispatcherTarget(),
                kEventHotKeyExclusive,
                &shortcut.key);
            if (status != noErr)
                return std::unexpected{status == eventHotKeyExistsErr ? Failure::conflict : Failure::unavailable};
            shortcuts_.emplace(name, std::move(shortcut));
            return {};
        }

        void clear(std::string_view name) override
        {
            const auto found = shortcuts_.find(name);
            if (found == shortcuts_.end())
                return;
            UnregisterEventHotKey(found->second.key);
            shortcuts_.erase(found);
        }

    private:
        struct Shortcut {
            UInt32 id;
            EventHotKeyRef key;
            std::function<void()> onKeyUp;
        };

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
                    self.mainLoop_.post(shortcut.onKeyUp);
            return noErr;
        }

        MainLoop& mainLoop_;
        EventHandlerRef handler_ = nullptr;
        bool isListening_ = false;
        UInt32 lastID_ = 0;
        std::map<std::string, Shortcut, std::less<>> shortcuts_;
    };

} // namespace

std::unique_ptr<GlobalShortcut> makeCarbonShortcut(MainLoop& mainLoop)
{
    return std::make_unique<CarbonShortcut>(mainLoop);
}

} // namespace vespra
