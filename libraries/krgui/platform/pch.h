#pragma once
// The toolkit's headers that most of this library's sources include, compiled once.

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QPainter>
#include <QWidget>
#include <QWindow>

#include <memory>
#include <mutex>
#include <string>
#include <vector>
