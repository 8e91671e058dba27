// ScanPage.h: frmscan, the page that runs a scan and shows its progress, with the scan
// driver ScanItems, LastScan and the yielding pause Wait.
#pragma once

#include <cstdint>
#include <string_view>

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class Procedure;

class FrmScan : public ui::Form {
  public:
    FrmScan();

    void Form_Load() override;
    void Form_Unload(int& cancel) override;

    // Runs the whole scan: memory, registry, drives; then the results page.
    void ScanItems();

    // The stop button (left button down).
    void Image1_Click();
    // Leaves for the results without marking the scan as stopped.
    void Image2_Click();
    void mnuExit_Click();

    ui::Label lbl2{*this, "lbl2"};            // stage
    ui::Label lbl3{*this, "lbl3"};            // items scanned
    ui::Label lbl4{*this, "lbl4"};            // threats found
    ui::ImageButton Image1{*this, "Image1"};  // stop
    ui::ImageButton Image2{*this, "Image2"};  // on to the results
    // The drives ("c:", ...), filled as the page loads; the walk takes each entry as the
    // root of a tree, so a caller may put a folder ("C:\\data") in their place.
    ui::ListBox Drive1{*this, "Drive1"};
    ui::GifPlayer PlayGif1{*this, "PlayGif1"};
    ui::ImageButton Picture1{*this, "Picture1"};  // background
    int Picture = 0;                              // the form's own picture from its image set

  private:
    // Whether this instance is the loaded page: a stop unloads it while its routines run.
    bool IsCurrent() const;
    void RunScans(Procedure& proc);
    void ScanDrive();
};

FrmScan& frmscan();

// The stage the running scan is in: "memory", "registry" or "files"; empty when idle.
std::string_view CurrentScanStage();

// Stores the present date and time as LastScan under the product key.
void LastScan();

// Yields until the tick count passes its start plus `seconds` seconds.
void Wait(std::int32_t seconds);

}  // namespace orvex
