// SPDX-License-Identifier: Apache-2.0
// All of the engine's public headers. Threads and ownership: as each header says.
#pragma once
#include "orvcore/command.h"
#include "orvcore/context.h"
#include "orvcore/cvplot.h"
#include "orvcore/filterimage.h"
#include "orvcore/filterplot.h"
#include "orvcore/filtertext.h"
#include "orvcore/imageinfotable.h"
#include "orvcore/imagewarningrule.h"
#include "orvcore/infotable.h"
#include "orvcore/logger.h"
#include "orvcore/messagequeue.h"
#include "orvcore/plotdata.h"
#include "orvcore/tablewriter.h"
#include "orvcore/workerthread.h"
