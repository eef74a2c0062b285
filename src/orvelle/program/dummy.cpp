#include "orvelle/program/dummy.h"

ProcessLocal<Ref<DummyForm>> frmDummy;

Ref<DummyForm> fncDummyForm() {
    if (frmDummy.get().isNothing())
        frmDummy = Ref<DummyForm>::make();
    return frmDummy;
}
