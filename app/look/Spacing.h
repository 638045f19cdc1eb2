// Distances that follow the screen. GUI thread.
#pragma once

class QWidget;

// `units` of distance in pixels: 4 each on 272 lines, growing with the screen's height.
int spacing(int units);

// Grows the margins, spacings and fixed gaps of all layouts on `page`, itself included, from the
// 480 by 272 pixels that the forms are drawn for to the present screen. Each layout grows once,
// however often this is called. What joins the page later grows by itself.
void growLayouts(QWidget *page);
