#pragma once

// The pictures under ":/SysSet_images/SysSet_images/", the translations under
// ":/Language/LangugePackage/", and the font of their characters, ":/SysSet_fonts/text.ttf". None
// is compressed, so that a translator maps its file as it stands.

// Makes the resources known to Qt. A static library's resources are not by themselves (Qt,
// "The Qt Resource System"), so each program calls this once, on the GUI thread, before it
// shows a page. Further calls do nothing.
void loadResources();

// Has the pictures that are drawn as border images in their larger size, for a screen of more than
// 480 lines. After loadResources() and before the first of them is shown, on the GUI thread.
void loadLargePictures();
