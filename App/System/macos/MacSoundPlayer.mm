#include "App/System/macos/MacAdapters.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainThread.h"
#include "HelperProtocol/Brand.h"
#include "Host/Host.h"
#include "Log/SystemLog.h"

#import <AppKit/AppKit.h>

@interface VespraSoundDelegate : NSObject <NSSoundDelegate>
- (instancetype)initWithHandler:(void (^)(NSSound* sound))handler;
@end

@implementation VespraSoundDelegate {
    void (^_handler)(NSSound*);
}

- (instancetype)initWithHandler:(void (^)(NSSound* sound))handler
{
    if ((self = [super init]))
        _handler = [handler copy];
    return self;
}

- (void)sound:(NSSound*)sound didFinishPlaying:(BOOL)finished
{
    _handler(sound);
}
@end

namespace vespra {

namespace {

    NSSound* shippedSound()
    {
        const auto path = resourceFile(heatAlarmSound);
        return path ? [[NSSound alloc] initWithContentsOfFile:@(path->c_str()) byReference:YES] : nil;
    }

    class MacSoundPlayer final : public SoundPlayer {
    public:
        explicit MacSoundPlayer(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
        {
            const std::function<void(NSSound*)> ended = lifetime_.guard([this](NSSound* sound) {
                if (sound == sound_)
                    finish();
            });
            delegate_ = [[VespraSoundDelegate alloc] initWithHandler:^(NSSound* sound) {
                ended(sound);
            }];
        }
        ~MacSoundPlayer() override { stop(); }

        void play(std::function<void()> completion) override
        {
            stop();
            completion_ = std::move(completion);
            isPlaying_ = true;
            sound_ = shippedSound();
            sound_.delegate = delegate_;
            if ([sound_ play])
                return;
            if (!std::exchange(hasLoggedFailure_, true))
                SystemLog{Brand::appBundleID(), "notifications"}.error(
                    sound_ ? "Alarme : lecture impossible" : "Alarme : son introuvable");
            finish();
        }
        void stop() override
        {
            mainThread::check();
            sound_.delegate = nil;
            [sound_ stop];
            finish();
        }

    private:
        void finish()
        {
            sound_ = nil;
            if (std::exchange(isPlaying_, false))
                mainLoop_.post(
                    lifetime_.guard([completion = std::exchange(completion_, nullptr)] { notify(completion); }));
        }

        MainLoop& mainLoop_;
        VespraSoundDelegate* delegate_;
        NSSound* sound_ = nil;
        bool isPlaying_ = false;
        bool hasLoggedFailure_ = false;
        std::function<void()> completion_;
        Lifetime lifetime_;
    };

} // namespace

std::unique_ptr<SoundPlayer> makeMacSoundPlayer(MainLoop& mainLoop)
{
    return std::make_unique<MacSoundPlayer>(mainLoop);
}

} // namespace vespra
