// The walk through all pages and dialogs of a panel, in every state that they have: in parts, each
// on panels of its own.
#pragma once

#include "tools/PanelSteps.h"

void walkPages(PanelSteps &panel);
void walkNetwork(PanelSteps &panel);
void walkDiagnosis(PanelSteps &panel);
void walkUpdates(PanelSteps &panel);
// The password question at the start.
void walkGate(PanelSteps &panel);
// Panels that lack something: the network service, networks, everything that a board tells.
void walkAlone(PanelSteps &panel);
