// Velqua: the whole public API in one include.
#pragma once

#include "velqua/cfg_conmut.h"
#include "velqua/entorno.h"
#include "velqua/enums.h"
#include "velqua/error.h"
#include "velqua/lineas.h"
#include "velqua/superficie.h"
#include "velqua/superficie_grabadora.h"
#include "velqua/texto.h"
#include "velqua/traductor.h"
