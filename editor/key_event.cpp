#include "editor/key_event.h"

#include <QGuiApplication>
#include <QKeyEvent>

namespace velkor {
namespace {

// The digit on the key with this native code, or -1. X11 numbers the digit row 10 ("1") to 19 ("0");
// Windows reports the digit's virtual key. Other platforms keep the key Qt reports.
int DigitOfNativeKey(const QKeyEvent& event) {
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("xcb") || platform.startsWith(QLatin1String("wayland"))) {
        quint32 code = event.nativeScanCode();
        if (code >= 10 && code <= 18) return static_cast<int>(code - 9);
        if (code == 19) return 0;
    } else if (platform == QLatin1String("windows")) {
        quint32 vk = event.nativeVirtualKey();
        if (vk >= '0' && vk <= '9') return static_cast<int>(vk - '0');
    }
    return -1;
}

} // namespace

bool IsModifierKey(int key) {
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_Meta:
    case Qt::Key_AltGr:
    case Qt::Key_CapsLock:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R: return true;
    default: return false;
    }
}

TShortCut ShortCutFromKeyEvent(const QKeyEvent& event) {
    TShortCut result;
    const Qt::KeyboardModifiers mods = event.modifiers();
    if (mods & Qt::ShiftModifier) result.Shift |= ssShift;
    if (mods & Qt::ControlModifier) result.Shift |= ssCtrl;
    if (mods & Qt::AltModifier) result.Shift |= ssAlt;
    int key = event.key();
    if (key == Qt::Key_Enter) key = Qt::Key_Return;
    // Shift+Tab is reported as a key of its own.
    if (key == Qt::Key_Backtab) key = Qt::Key_Tab;
    if ((result.Shift & (ssShift | ssCtrl | ssAlt)) != 0 && !(key >= Qt::Key_0 && key <= Qt::Key_9)) {
        int digit = DigitOfNativeKey(event);
        if (digit >= 0) key = Qt::Key_0 + digit;
    }
    result.Key = key;
    return result;
}

} // namespace velkor
