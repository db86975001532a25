#ifndef QRA_APPS_QRA_REQUEST_PARAMS_H
#define QRA_APPS_QRA_REQUEST_PARAMS_H

#include <qra/qra_content_agent.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

struct ListOptions;

using GeneralParam = std::unique_ptr<qra_general_s, decltype(&qra_destroy_general_param)>;
using PageParam = std::unique_ptr<qra_page_style_s, decltype(&qra_destroy_page_param)>;

/// The texts of a list request, each with the setter that takes it.
using GeneralTexts =
    std::vector<std::pair<qra_error_code_e (*)(qra_general_param_h, const char*), std::string>>;

/// A request with those of the texts that are not empty. @throws CommandError
GeneralParam general_param(const GeneralTexts& texts);

/// The page that the options describe. @throws CommandError
PageParam page_param(const ListOptions& options);

#endif
