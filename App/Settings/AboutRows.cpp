#include "App/DesignSystem/Icon.h"
#include "App/DesignSystem/Label.h"
#include "App/DesignSystem/SheetWindow.h"
#include "App/Settings/SettingFacts.h"
#include "App/Settings/SpecialRows.h"
#include "App/Wording/Localized.h"
#include "HelperProtocol/Brand.h"

#include <QFile>
#include <QPainter>

namespace vespra {

namespace {

    /// The mark as the application's icon has it.
    class BrandPlate final : public QWidget {
    public:
        explicit BrandPlate(const Theme& theme)
            : theme_{theme}
            , follows_{theme, *this}
        {
            setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        }

        QSize sizeHint() const override { return QSize{1, 1} * theme_.look.units(76); }

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter{this};
            drawEmblem(painter, rect());
        }

    private:
        const Theme theme_;
        FollowsLook follows_;
    };

    QWidget* centered(QWidget* widget)
    {
        auto* place = new QWidget;
        auto* row = new QHBoxLayout{place};
        row->setContentsMargins({});
        row->addWidget(widget, 0, Qt::AlignCenter);
        return place;
    }

    std::string acknowledgements()
    {
        QFile file{QStringLiteral(":/acknowledgements.txt")};
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string{};
    }

    void openAcknowledgements(const Theme& theme, QWidget& window)
    {
        constexpr double width = 600;
        constexpr int lines = 24;
        auto* sheet = new SheetWindow{theme, localized("Acknowledgements"), width, window};
        sheet->add(new Label{theme, TextStyle::body})
            .show(localized("%1 is made with the work of others. These are their licences.", {Brand::appName()}));
        sheet->add(makeTextView(theme, localized("Acknowledgements"), acknowledgements(), lines), 1);
        sheet->addButton(localized("Close"), ButtonKind::primary);
        sheet->open();
    }

} // namespace

QWidget* makeBrandView(const SettingsSurface& surface)
{
    constexpr double top = 16, bottom = 8, gap = 4, belowPlate = 6;
    const auto& theme = surface.theme;
    const auto& look = theme.look;
    auto* view = new QWidget;
    auto* column = new QVBoxLayout{view};
    column->setContentsMargins(0, look.units(top), 0, look.units(bottom));
    column->setSpacing(look.units(gap));
    column->addWidget(new BrandPlate{theme}, 0, Qt::AlignHCenter);
    column->addSpacing(look.units(belowPlate));
    auto& name = added(*column, new Label{theme, TextStyle::title});
    auto& version = added(*column, new Label{theme, TextStyle::caption, &Tokens::text2});
    name.show(Brand::appName());
    version.show(settingFacts::versionText());
    for (auto* label : {&name, &version})
        label->setAlignment(Qt::AlignCenter);
    return view;
}

QWidget* makeAcknowledgementsButton(const SettingsSurface& surface)
{
    auto* button = new Button{surface.theme, ButtonKind::plain, ButtonSize::small};
    button->show(localized("Acknowledgements"));
    QObject::connect(button, &QPushButton::clicked, [theme = surface.theme, button] {
        openAcknowledgements(theme, *button->window());
    });
    return centered(button);
}

} // namespace vespra
