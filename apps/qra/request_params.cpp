#include "apps/qra/request_params.h"

#include "apps/qra/list_request.h"
#include "apps/qra/request_error.h"

GeneralParam general_param(const GeneralTexts& texts) {
    qra_general_param_h raw = nullptr;
    check("list", qra_create_general_param(&raw));
    GeneralParam param(raw, &qra_destroy_general_param);
    for (const auto& [set, text] : texts) {
        if (!text.empty()) {
            check("list", set(raw, text.c_str()));
        }
    }
    return param;
}

PageParam page_param(const ListOptions& options) {
    qra_page_param_h raw = nullptr;
    check("page style", qra_create_page_param(&raw));
    PageParam param(raw, &qra_destroy_page_param);
    check("page style", qra_param_set_page_style_mask(raw, options.mask));
    check("page style", qra_param_set_page_style_order(raw, options.order));
    check("page style", qra_param_set_page_style_group_index(raw, options.group));
    check("page style", qra_param_set_page_style_row(raw, options.rows));
    check("page style", qra_param_set_page_style_column(raw, options.columns));
    return param;
}
