/// \file
/// Zelkon: Qt widgets for building the filters of queries and reports.
/// This header brings the public contract: controls by name, property bags, the platform services,
/// values, errors, conversions and form files. Each control has its own header besides.
#pragma once

#include <zelkon/common/checkclass.h>
#include <zelkon/common/control.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/missing.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/propertypage.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/common/variants.h>
#include <zelkon/common/version.h>
#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filterproxymodel.h>
#include <zelkon/query/filterquery.h>

/// \namespace zelkon
/// The controls, their values and errors, the platform services, form files and data access.
