// SPDX-License-Identifier: Apache-2.0
#include "Model.h"

#include "ErrorUtils.h"
#include "FileNameTensor.h"
#include "LcMl.h"
#include "ReturnIfError.h"
#include "Tensor.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/Model";

// No serialised GraphDef is larger (protobuf's limit); a folder opened as a file claims to be.
constexpr std::streamoff MAXIMUM_GRAPH_SIZE = std::numeric_limits<std::int32_t>::max();

struct FileBytes
{
    std::unique_ptr<char[]> bytes; ///< null if they could not be read
    std::size_t size = 0;
};

/// Everything from the start of the file to its present position.
FileBytes readToPosition(std::ifstream *file)
{
    const std::streamoff size = file->tellg();
    if (size < 0 || size > MAXIMUM_GRAPH_SIZE)
        return {};
    std::unique_ptr<char[]> bytes(new char[static_cast<std::size_t>(size)]); // not set to 0 first
    if (!file->seekg(0) || !file->read(bytes.get(), size))
        return {};
    return {std::move(bytes), static_cast<std::size_t>(size)};
}

} // namespace

Model::Model() = default;

Model::~Model()
{
    clear();
}

void Model::clear()
{
    if (session != nullptr)
        api.TF_DeleteSession(session, status); // its outcome is not looked at: nothing is left to do about it
    if (graph != nullptr)
        api.TF_DeleteGraph(graph);
    if (status != nullptr)
        api.TF_DeleteStatus(status);
    session = nullptr;
    graph = nullptr;
    status = nullptr;
}

Error Model::init(const std::string &path, const std::vector<unsigned char> &config)
{
    clear();
    api.load();
    ZAV_RETURN_IF_ERROR(api.checkComplete(), __LINE__);
    createSession(config);
    ZAV_RETURN_IF_ERROR(checkStatus(), __LINE__);

    TF_Buffer *graphDef = readGraphFile(path);
    ZAV_RETURN_IF_ERROR(errorCheck(graphDef != nullptr, "An error occurred reading the model"), __LINE__);
    importGraph(graphDef);
    ZAV_RETURN_IF_ERROR(checkStatus(), __LINE__);

    const TF_Operation *initOperation = api.TF_GraphOperationByName(graph, "init");
    ZAV_RETURN_IF_ERROR(errorCheck(initOperation != nullptr, "Error: No operation named \"init\" exists"), __LINE__);
    api.TF_SessionRun(session, nullptr, nullptr, nullptr, 0, nullptr, nullptr, 0, &initOperation, 1, nullptr, status);
    ZAV_RETURN_IF_ERROR(checkStatus(), __LINE__);
    return {};
}

void Model::createSession(const std::vector<unsigned char> &config)
{
    status = api.TF_NewStatus();
    graph = api.TF_NewGraph();
    TF_SessionOptions *options = api.TF_NewSessionOptions();
    if (!config.empty())
        api.TF_SetConfig(options, config.data(), config.size(), status);
    session = api.TF_NewSession(graph, options, status);
    api.TF_DeleteSessionOptions(options);
}

TF_Buffer *Model::readGraphFile(const std::string &path) const
{
    // As a plain string Windows would read the name in its own code page.
    const std::filesystem::path utf8Path(std::u8string(path.begin(), path.end()));
    std::ifstream file(utf8Path, std::ios::binary | std::ios::ate);
    if (!file.is_open()) {
        std::cerr << "Unable to open file: " << path << std::endl;
        return nullptr;
    }
    const FileBytes content = readToPosition(&file);
    if (content.bytes == nullptr) {
        std::cerr << "Unable to read the full file: " << path << std::endl;
        return nullptr;
    }
    return api.TF_NewBufferFromString(content.bytes.get(), content.size);
}

void Model::importGraph(TF_Buffer *graphDef)
{
    TF_ImportGraphDefOptions *options = api.TF_NewImportGraphDefOptions();
    api.TF_GraphImportGraphDef(graph, graphDef, options, status);
    api.TF_DeleteImportGraphDefOptions(options);
    api.TF_DeleteBuffer(graphDef);
}

Error Model::run(const std::vector<Tensor *> &inputs, const std::vector<Tensor *> &outputs)
{
    // An input that is an output too would be emptied before the run.
    const auto isFull = [&outputs](const Tensor *input) {
        return input->state == 1 && std::find(outputs.begin(), outputs.end(), input) == outputs.end();
    };
    ZAV_RETURN_IF_ERROR(errorCheck(std::all_of(inputs.begin(), inputs.end(), isFull),
                                   "Error: Not all elements from the inputs are full"),
                        __LINE__);
    // TensorFlow follows a null operation, which is what an output has that was never bound.
    const auto isValid = [](const Tensor *output) { return output->state != -1 && output->output.oper != nullptr; };
    ZAV_RETURN_IF_ERROR(
        errorCheck(std::all_of(outputs.begin(), outputs.end(), isValid), "Error: Not all outputs Tensors are valid"),
        __LINE__);
    ZAV_RETURN_IF_ERROR(checkSession(), __LINE__);

    for (Tensor *output : outputs)
        output->release();
    ZAV_RETURN_IF_ERROR(runSession(inputs, outputs), __LINE__);
    for (Tensor *input : inputs)
        input->release();
    return {};
}

Error Model::run(const std::vector<Tensor *> &inputs, Tensor &output)
{
    return run(inputs, std::vector<Tensor *>{&output});
}

Error Model::run(Tensor &input, Tensor &output)
{
    return run(std::vector<Tensor *>{&input}, std::vector<Tensor *>{&output});
}

Error Model::runSession(const std::vector<Tensor *> &inputs, const std::vector<Tensor *> &outputs)
{
    std::vector<TF_Output> inputPlaces;
    std::vector<TF_Tensor *> inputValues;
    inputPlaces.reserve(inputs.size());
    inputValues.reserve(inputs.size());
    for (const Tensor *input : inputs) {
        inputPlaces.push_back(input->output);
        inputValues.push_back(input->tensor);
    }
    std::vector<TF_Output> outputPlaces;
    outputPlaces.reserve(outputs.size());
    for (const Tensor *output : outputs)
        outputPlaces.push_back(output->output);
    std::vector<TF_Tensor *> results(outputs.size(), nullptr);

    api.TF_SessionRun(session, nullptr, inputPlaces.data(), inputValues.data(), static_cast<int>(inputs.size()),
                      outputPlaces.data(), results.data(), static_cast<int>(outputs.size()), nullptr, 0, nullptr,
                      status);
    if (Error error = checkStatus(); error.hasError())
        return error;
    for (std::size_t i = 0; i < outputs.size(); ++i)
        outputs[i]->take(results[i]);
    return {};
}

Error Model::save(const std::string &path)
{
    ZAV_RETURN_IF_ERROR(checkSession(), __LINE__);
    FileNameTensor name(api, path);
    ZAV_RETURN_IF_ERROR(checkAllocated(name), __LINE__);
    // The runtime calls of a save are fixed: the name is written, and once more over itself. The second outcome counts.
    name.encode(status);
    ZAV_RETURN_IF_ERROR(checkEncoded(name.encode(status), path), __LINE__);
    // The message is matched as it stands, so the stray letter at the end of its operation stays.
    ZAV_RETURN_IF_ERROR(
        runSaver(name, "save/control_dependency", "Error: No operation named \"save/control_dependencyl\" exists"),
        __LINE__);
    return {};
}

Error Model::restore(const std::string &path)
{
    ZAV_RETURN_IF_ERROR(checkSession(), __LINE__);
    FileNameTensor name(api, path);
    ZAV_RETURN_IF_ERROR(checkAllocated(name), __LINE__);
    ZAV_RETURN_IF_ERROR(checkEncoded(name.encode(status), path), __LINE__);
    ZAV_RETURN_IF_ERROR(runSaver(name, "save/restore_all", "Error: No operation named \"save/restore_all\" exists"),
                        __LINE__);
    return {};
}

Error Model::runSaver(const FileNameTensor &name, const char *operationName, const std::string &missingMessage)
{
    const TF_Output nameInput{api.TF_GraphOperationByName(graph, "save/Const"), 0};
    const TF_Operation *operation = api.TF_GraphOperationByName(graph, operationName);
    if (operation == nullptr)
        return errorCheck(false, missingMessage);
    if (nameInput.oper == nullptr)
        return errorCheck(false, "Error: No operation named \"save/Const\" exists");
    TF_Tensor *nameValue = name.get();
    api.TF_SessionRun(session, nullptr, &nameInput, &nameValue, 1, nullptr, nullptr, 0, &operation, 1, nullptr, status);
    return checkStatus();
}

Error Model::errorCheck(bool condition, const std::string &message) const
{
    if (condition)
        return NoError;
    qCCritical(lcMl).noquote() << QString::fromStdString(message);
    return Error(Failure).ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

Error Model::checkStatus() const
{
    return ErrorUtils::equal<bool>(api.TF_GetCode(status) == TF_OK, true, Error(Failure));
}

Error Model::checkSession() const
{
    return errorCheck(session != nullptr, "Error: The model is not initialized");
}

Error Model::checkAllocated(const FileNameTensor &name) const
{
    return errorCheck(name.get() != nullptr, "An error occurred allocating the file name Tensor");
}

Error Model::checkEncoded(bool encoded, const std::string &path) const
{
    if (encoded)
        return {};
    std::cerr << "Error during filename " << path << " encoding" << std::endl;
    return checkStatus();
}

std::vector<std::string> Model::operationNames(bool print) const
{
    std::vector<std::string> names;
    if (graph == nullptr)
        return names;
    std::size_t position = 0;
    while (TF_Operation *operation = api.TF_GraphNextOperation(graph, &position)) {
        names.emplace_back(api.TF_OperationName(operation));
        if (print)
            std::cout << names.back() << '\n';
    }
    return names;
}

} // namespace zav
