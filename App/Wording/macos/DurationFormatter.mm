#include "App/Wording/DurationFormatter.h"

#include <QLocale>

#import <Foundation/Foundation.h>

namespace vespra {

namespace {

    NSDateComponentsFormatterUnitsStyle unitsStyle(DurationUnits units)
    {
        switch (units) {
        case DurationUnits::abbreviated:
            return NSDateComponentsFormatterUnitsStyleAbbreviated;
        case DurationUnits::brief:
            return NSDateComponentsFormatterUnitsStyleBrief;
        case DurationUnits::full:
            break;
        }
        return NSDateComponentsFormatterUnitsStyleFull;
    }

    class ComponentsDurationFormatter final : public DurationFormatter {
    public:
        ComponentsDurationFormatter(DurationUnits units, const QLocale& locale)
            : formatter_{[[NSDateComponentsFormatter alloc] init]}
        {
            NSCalendar* calendar = [NSCalendar currentCalendar];
            calendar.locale = [NSLocale localeWithLocaleIdentifier:@(locale.name().toUtf8().constData())];
            formatter_.calendar = calendar;
            formatter_.unitsStyle = unitsStyle(units);
            formatter_.allowedUnits = NSCalendarUnitHour | NSCalendarUnitMinute;
            formatter_.zeroFormattingBehavior = NSDateComponentsFormatterZeroFormattingBehaviorDropAll;
        }

        std::string text(std::chrono::minutes length) const override
        {
            NSString* text = [formatter_ stringFromTimeInterval:std::chrono::duration<double>{length}.count()];
            const char* bytes = text.UTF8String;
            return bytes ? bytes : "";
        }

    private:
        NSDateComponentsFormatter* formatter_;
    };

} // namespace

std::unique_ptr<DurationFormatter> makeDurationFormatter(DurationUnits units, const QLocale& locale)
{
    return std::make_unique<ComponentsDurationFormatter>(units, locale);
}

} // namespace vespra
