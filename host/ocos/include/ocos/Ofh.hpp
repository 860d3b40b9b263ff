// The host's calling form of a function handle: outputs and inputs as host arrays.
#pragma once

struct oxArray;

using Ofh_ORVEX_fn = void(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs);
