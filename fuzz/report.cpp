// What `vort report` reads, to the page: sections model, markers (or markers.gz), permutations and
// quantiles. Of an accepted input
//
//   - model.json is the same when it is written and read again;
//   - the page's tags do not depend on names: with every character that means something in HTML
//     replaced, in all texts of the input, the page has the same tags;
//   - the data for the page's scripts are JSON.
//
// The page is the template alone: without its style and scripts it takes a hundredth of the time.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/results.h"
#include "report/page_template.h"
#include "results/model_json.h"
#include "support/files.h"
#include "support/harness.h"
#include "support/sections.h"

namespace vort {

std::string page_template() {
    static const std::string page = fuzz::read_file(VORT_PAGE_TEMPLATE);
    return page;
}

std::string chartjs_version() {
    return "0";
}

}  // namespace vort

namespace vort::fuzz {

namespace {

using Json = nlohmann::json;

constexpr std::string_view kMarkup = "<>&\"'";

std::string written(const Json& model) {
    return model.dump(2, ' ', false, Json::error_handler_t::replace);
}

// Characters of markup become control characters, of which the page shows nothing.
std::string harmless(std::string_view text) {
    std::string changed(text);
    for (char& c : changed) {
        const std::size_t k = kMarkup.find(c);
        if (k != std::string_view::npos) c = static_cast<char>(1 + k);
    }
    return changed;
}

Json harmless_model(const Json& model) {
    if (model.is_string()) return harmless(model.get_ref<const std::string&>());
    if (model.is_array()) {
        Json changed = Json::array();
        for (const Json& each : model) changed.push_back(harmless_model(each));
        return changed;
    }
    if (!model.is_object()) return model;
    Json changed = Json::object();
    for (const auto& [key, value] : model.items()) changed[harmless(key)] = harmless_model(value);
    return changed;
}

// The tags of a page, without what stands between quotes.
std::string tags_of(std::string_view page) {
    std::string tags;
    bool in_tag = false;
    char quote = '\0';
    for (const char c : page) {
        if (!in_tag && c == '<') in_tag = true;
        if (in_tag && quote == '\0') tags += c;
        if (!in_tag) continue;
        if (quote != '\0') {
            if (c == quote) quote = '\0';
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            in_tag = false;
        }
    }
    return tags;
}

void require_data(std::string_view page) {
    constexpr std::string_view kBegin = "<script type=\"application/json\" id=\"data\">";
    const std::size_t begin = page.find(kBegin);
    require(begin != std::string_view::npos, "the page has data");
    const std::string_view rest = page.substr(begin + kBegin.size());
    require(Json::accept(rest.substr(0, rest.find("</script>"))), "the data are JSON");
}

class Report {
  public:
    void run(std::string_view text) {
        const Sections input(text);
        put_tables("in/", input["markers"], input["permutations"], input["quantiles"]);
        files_.put("in/model.json", input["model"]);
        if (input.has("markers.gz")) {
            files_.put("in/markers.tsv.gz", input["markers.gz"]);
            files_.remove("in/markers.tsv");
        }
        if (!makes_page(in_)) return;
        const std::string page = read_file(in_ + "report.html");
        require_data(page);
        const Json model = read_model(in_ + "model.json");
        require_round_trip(model);
        if (!input.has("markers.gz")) require_same_tags(page, model, input);
    }

  private:
    static bool makes_page(const std::string& folder) {
        std::ostringstream told;
        Diagnostics diagnostics(told);
        return accepts([&] { write_report_page(folder, folder, diagnostics); });
    }

    void put_tables(const std::string& folder, std::string_view markers,
                    std::string_view permutations, std::string_view quantiles) {
        files_.put(folder + "markers.tsv", markers);
        files_.put(folder + "permutations.tsv", permutations);
        files_.put(folder + "quantiles.tsv", quantiles);
    }

    void require_round_trip(const Json& model) {
        const std::string text = written(model);
        const Json again = read_model(files_.put("again.json", text));
        require(written(again) == text, "a model is read as it was written");
    }

    void require_same_tags(const std::string& page, const Json& model, const Sections& input) {
        put_tables("plain/", harmless(input["markers"]), harmless(input["permutations"]),
                   harmless(input["quantiles"]));
        files_.put("plain/model.json", written(harmless_model(model)));
        require(makes_page(plain_), "names do not decide whether there is a page");
        require(tags_of(read_file(plain_ + "report.html")) == tags_of(page),
                "no name puts markup into the page");
    }

    Files files_;
    std::string in_ = files_.folder("in") + '/';
    std::string plain_ = files_.folder("plain") + '/';
};

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static vort::fuzz::Report report;
    report.run(vort::fuzz::text_of(data, size));
    return 0;
}
