#pragma once

/// A publisher with all of its operators.
#include "Platform/Reactive/OperatorsErrors.hpp"
#include "Platform/Reactive/OperatorsTime.hpp"
#include "Platform/Reactive/OperatorsValues.hpp"
#include "Platform/Reactive/PublisherCore.hpp"
