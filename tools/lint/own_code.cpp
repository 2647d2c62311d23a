// A plugin of clang-tidy: its checks look through this project's declarations only. Without it they look through every
// header of the system as well, to drop what they find there, which takes most of their time. The compiler and the
// analyzer see everything as before.
#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/AST/Decl.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendPluginRegistry.h>

#include <memory>
#include <string>
#include <vector>

namespace {

bool is_own(const clang::Decl& declaration, const clang::SourceManager& sources) {
    return !sources.isInSystemHeader(sources.getExpansionLoc(declaration.getLocation()));
}

class scope_limiter : public clang::ASTConsumer {
    void HandleTranslationUnit(clang::ASTContext& context) override {
        std::vector<clang::Decl*> own;
        for (clang::Decl* const declaration : context.getTranslationUnitDecl()->decls()) {
            if (is_own(*declaration, context.getSourceManager())) {
                own.push_back(declaration);
            }
        }
        context.setTraversalScope(own);
    }
};

class own_code : public clang::PluginASTAction {
    std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& /*compiler*/,
                                                          llvm::StringRef /*file*/) override {
        return std::make_unique<scope_limiter>();
    }
    bool ParseArgs(const clang::CompilerInstance& /*compiler*/,
                   const std::vector<std::string>& /*arguments*/) override {
        return true;
    }
    ActionType getActionType() override { return AddBeforeMainAction; }
};

// NOLINTNEXTLINE(cert-err58-cpp): it is how a plugin makes itself known, and nothing in it throws.
const clang::FrontendPluginRegistry::Add<own_code> REGISTRATION("own-code", "look through this project's code only");

}  // namespace
