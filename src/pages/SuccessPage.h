// SuccessPage.h: frmsuccess, the completion page after a removal.
#pragma once

#include "ui/Form.h"

namespace orvex {

class FrmSuccess : public ui::Form {
  public:
    FrmSuccess();
};

FrmSuccess& frmsuccess();

}  // namespace orvex
