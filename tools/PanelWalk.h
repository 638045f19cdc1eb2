// The way through all pages and dialogs of a panel, in every state that they have: in parts, each
// on panels started for it.
#pragma once

#include "tools/PanelSteps.h"

void walkPages(PanelSteps &panel);
void walkNetwork(PanelSteps &panel);
void walkDiagnosis(PanelSteps &panel);
void walkUpdates(PanelSteps &panel);
// What stands before everything else: the password.
void walkGate(PanelSteps &panel);
// Panels that lack something: the network service, networks, everything that a board tells.
void walkAlone(PanelSteps &panel);
