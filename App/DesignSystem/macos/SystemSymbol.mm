#include "App/DesignSystem/SystemSymbol.h"

#include <QPainter>

#import <AppKit/AppKit.h>

namespace vespra {

namespace {

    /// The symbol beside text of `size`; nil if there is none.
    NSImage* symbolImage(std::string_view name, CGFloat size)
    {
        NSString* symbolName = [[NSString alloc] initWithBytes:name.data()
                                                        length:name.size()
                                                      encoding:NSUTF8StringEncoding];
        NSImage* symbol = [NSImage imageWithSystemSymbolName:symbolName accessibilityDescription:nil];
        return [symbol
            imageWithSymbolConfiguration:[NSImageSymbolConfiguration configurationWithPointSize:size
                                                                                         weight:NSFontWeightMedium]];
    }

    /// Null if there are none.
    QImage pixels(NSImage* image)
    {
        NSRect whole = NSMakeRect(0, 0, image.size.width, image.size.height);
        CGImageRef drawn = [image CGImageForProposedRect:&whole context:nil hints:nil];
        if (!drawn)
            return {};
        NSData* data =
            [[[NSBitmapImageRep alloc] initWithCGImage:drawn] representationUsingType:NSBitmapImageFileTypePNG
                                                                           properties:@{}];
        return QImage::fromData(static_cast<const uchar*>(data.bytes), static_cast<int>(data.length));
    }

} // namespace

QImage systemSymbol(std::string_view name, int width)
{
    // The text that an icon of 16 points goes with.
    constexpr CGFloat pointsOfIcon = 16, pointsOfText = 13;
    NSImage* image = symbolImage(name, width * pointsOfText / pointsOfIcon);
    const auto symbol = pixels(image);
    if (symbol.isNull())
        return {};
    QImage square{width, width, QImage::Format_ARGB32_Premultiplied};
    square.fill(Qt::transparent);
    // As large as it says, of however many pixels it came: on a fine display there are more.
    QRectF place{{}, QSizeF{image.size.width, image.size.height}.boundedTo(square.size())};
    place.moveCenter({width / 2.0, width / 2.0});
    QPainter painter{&square};
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, symbol);
    return square;
}

} // namespace vespra
