#pragma once

class QWidget;

// Makes Qt's own message boxes and dialogs the program's prompts, owned by
// `parent` (the main window once it exists; null before).
void useWidgetPrompts(QWidget* parent);
