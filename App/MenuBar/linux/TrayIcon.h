#pragma once

#include "App/MenuBar/linux/BusStructure.h"
#include "App/System/AppearanceMonitoring.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QList>

namespace vespra {

/// What the icon is drawn with.
struct TrayColors {
    QColor mark, halo, dot;
    bool operator==(const TrayColors&) const = default;
};

/// Colours that fit the desktop's panel, as far as that can be guessed.
TrayColors trayColors(const Appearance& appearance);

/// The mark in a square of `size` pixels, with the dot if a session is active.
QImage trayIcon(int size, bool isActive, const TrayColors& colors);

/// An image as items in the tray publish it: rows of 32 bits a pixel, alpha first.
struct TrayImage {
    int width = 0, height = 0; // pixels
    QByteArray pixels;

    static auto fields(auto& value) { return std::tie(value.width, value.height, value.pixels); }
};
using TrayImages = QList<TrayImage>;

/// The icon in every size that panels ask for.
TrayImages trayImages(bool isActive, const TrayColors& colors);

} // namespace vespra
