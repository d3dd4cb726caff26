#include "App/Wording/DurationFormatter.h"

#include <QLocale>

#include <unicode/listformatter.h>
#include <unicode/measfmt.h>
#include <unicode/measunit.h>
#include <unicode/measure.h>

#include <vector>

namespace vespra {

namespace {

    icu::Locale icuLocale(const QLocale& locale)
    {
        // The locale without a language would write "1 minutes".
        return locale.language() == QLocale::C ? icu::Locale::getUS() : icu::Locale{locale.name().toUtf8().constData()};
    }

    UMeasureFormatWidth measureWidth(DurationUnits units)
    {
        switch (units) {
        case DurationUnits::abbreviated:
            return UMEASFMT_WIDTH_NARROW;
        case DurationUnits::brief:
            return UMEASFMT_WIDTH_SHORT;
        case DurationUnits::full:
            break;
        }
        return UMEASFMT_WIDTH_WIDE;
    }

    class ICUDurationFormatter final : public DurationFormatter {
    public:
        ICUDurationFormatter(DurationUnits units, const icu::Locale& locale)
            : measures_{locale, measureWidth(units), status_}
            // Brief units stand side by side as abbreviated ones do: "1 h 30 min", not "1 h et 30 min".
            , list_{icu::ListFormatter::createInstance(locale, ULISTFMT_TYPE_UNITS,
                  units == DurationUnits::full ? ULISTFMT_WIDTH_WIDE : ULISTFMT_WIDTH_NARROW, status_)}
            , hour_{icu::MeasureUnit::getHour()}
            , minute_{icu::MeasureUnit::getMinute()}
        {
        }

        std::string text(std::chrono::minutes length) const override
        {
            auto status = status_;
            if (U_FAILURE(status))
                return {};
            const auto hours = length.count() / 60, minutes = length.count() % 60;
            std::vector<icu::UnicodeString> parts;
            if (hours != 0)
                parts.push_back(part(hours, hour_, status));
            if (minutes != 0 || hours == 0)
                parts.push_back(part(minutes, minute_, status));
            icu::UnicodeString joined;
            list_->format(parts.data(), static_cast<std::int32_t>(parts.size()), joined, status);
            std::string text;
            return U_SUCCESS(status) ? joined.toUTF8String(text) : text;
        }

    private:
        icu::UnicodeString part(std::int64_t count, const icu::MeasureUnit& unit, UErrorCode& status) const
        {
            const icu::Measure measure{count, new icu::MeasureUnit{unit}, status};
            icu::FieldPosition nowhere;
            icu::UnicodeString text;
            return measures_.formatMeasures(&measure, 1, text, nowhere, status);
        }

        UErrorCode status_ = U_ZERO_ERROR;
        icu::MeasureFormat measures_;
        std::unique_ptr<icu::ListFormatter> list_;
        icu::MeasureUnit hour_, minute_;
    };

} // namespace

std::unique_ptr<DurationFormatter> makeDurationFormatter(DurationUnits units, const QLocale& locale)
{
    return std::make_unique<ICUDurationFormatter>(units, icuLocale(locale));
}

} // namespace vespra
