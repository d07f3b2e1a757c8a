#pragma once

#include "src/quillet.h"

#include <QAction>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollBar>
#include <QSlider>
#include <QStatusBar>
#include <QToolBar>

/// The main window. Makes those private members public that tests use.
class TOpenWindow : public TQuillet
{
public:
    TOpenWindow()
        : TQuillet(nullptr, Qt::WindowFlags())
    {
    }

    using TQuillet::d_action_about;
    using TQuillet::d_action_export_images;
    using TQuillet::d_action_export_pdf;
    using TQuillet::d_action_import;
    using TQuillet::d_action_new;
    using TQuillet::d_action_open;
    using TQuillet::d_action_quit;
    using TQuillet::d_action_reindex;
    using TQuillet::d_action_save;
    using TQuillet::d_action_save_as;
    using TQuillet::d_data;
    using TQuillet::d_data_changed;
    using TQuillet::d_display_click;
    using TQuillet::d_display_widget;
    using TQuillet::d_error_text;
    using TQuillet::d_file_name;
    using TQuillet::d_header_dialog;
    using TQuillet::d_history;
    using TQuillet::d_label_dock;
    using TQuillet::d_label_widget;
    using TQuillet::d_message_box;
    using TQuillet::d_page_dock;
    using TQuillet::d_page_widget;
    using TQuillet::d_progress_clock;
    using TQuillet::d_reindex_dialog;
    using TQuillet::d_safety_net;
    using TQuillet::d_settings;
    using TQuillet::d_settings_dock;
    using TQuillet::d_settings_widget;
    using TQuillet::d_working_dir;
    using TQuillet::d_zoom_label;
    using TQuillet::d_zoom_slider;
    using TQuillet::End_Recovery;
    using TQuillet::Flush_Work;
    using TQuillet::Header_Dialog;
    using TQuillet::Import_Files;
    using TQuillet::Insert_Dropped_Files;
    using TQuillet::Mark_Changed;
    using TQuillet::New_Progress;
    using TQuillet::Open_File;
    using TQuillet::Record_Change;
    using TQuillet::Recover_Work;
    using TQuillet::Save_To;
    using TQuillet::Set_Changed;
    using TQuillet::Set_Label_Color;
    using TQuillet::Update_Document_Actions;
    using TQuillet::Write_Settings;
};
