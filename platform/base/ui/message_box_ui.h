#pragma once

extern "C" {

/// Shows a Qt message box and waits for its answer. On the thread of a running QApplication.
/// \param text, caption never null
/// \param style Win32 style: buttons in the lowest digit, icon in the next, number of the default button in the third
/// \return the Win32 answer; the cautious one when the box is closed
__attribute__((visibility("default"))) int VrShowQtMessageBox(const wchar_t* text, const wchar_t* caption,
                                                              unsigned int style);

} // extern "C"
