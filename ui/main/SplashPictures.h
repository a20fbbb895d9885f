#pragma once
// Pictures of hydro units for the start window, drawn by the program.

#include <QRect>
#include <QString>

class QPainter;

namespace aqx::ui {

inline constexpr int kSplashPictureCount = 4;

struct SplashCaption {
  QString station;      // lblProperty
  QString description;  // lblPropertyMain
};

// Picture 1..kSplashPictureCount; other numbers are taken modulo the count.
void DrawSplashPicture(QPainter& painter, const QRect& area, int picture);
SplashCaption SplashPictureCaption(int picture);
// The picture after `picture`, cycling over 1..kSplashPictureCount.
int NextSplashPicture(int picture);

}  // namespace aqx::ui
